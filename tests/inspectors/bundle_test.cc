// Bundles, by their folder and by identifier.
#include "inspectors/plist/bundle.h"

#include <memory>

#include "portable/core_foundation/errors.h"
#include "portable_inspectors/filesystem_object.h"
#include "tests/inspectors/asking.h"
#include "tests/machine/recorded_tree.h"

namespace {

std::string Entry(std::string const& key, std::string const& value) {
  return "<key>" + key + "</key><string>" + value + "</string>";
}

class Bundles : public testing::Test {
 protected:
  ::folder Folder(std::string const& name) const {
    return MacintoshPlatform::posix_folder_of_world(tree_.At("/" + name));
  }
  // A folder whose information dictionary holds this.
  Bundle Make(std::string const& name, std::string const& entries) const {
    tree_.Write("/" + name + "/Contents/Info.plist", "<plist><dict>" + entries + "</dict></plist>");
    return bundle_of(Folder(name));
  }
  static Bundle Named(std::string const& identifier) {
    inspector_string const name = Name(identifier);
    return Ask<Bundle>("bundle", "", nullptr, &name);
  }

  RecordedTree tree_;
};

TEST_F(Bundles, HaveTwoVersions) {
  struct {
    std::string entries, version, bundle_version;
  } const cases[] = {
      {Entry("CFBundleVersion", "1.2.3b4"), "1 2 3 0 0", "1 2 3 96 4"},
      {Entry("CFBundleVersion", "12.9.9fc255"), "12 9 9 0 0", "12 9 9 128 255"},
      {Entry("CFBundleVersion", "3") + Entry("CFBundleShortVersionString", "9"), "3 0 0 0 0",
       "3 0 0 128 0"},
      // No packed form: the texts count.
      {Entry("CFBundleVersion", "1.10.3") + Entry("CFBundleShortVersionString", "1.1"),
       "1 1 0 128 0 1.1", "1 10 3 128 0 1.10.3"},
      {Entry("CFBundleShortVersionString", "2.5"), "2 5 0 128 0 2.5", kNone},
      {Entry("CFBundleShortVersionString", "2.5\u4E2D9"), "2 5 0 128 0 2.5", kNone},
      {Entry("CFBundleShortVersionString", "\u4E2D9"), kNone, kNone},
      {"", kNone, kNone},
  };
  int number = 0;
  for (auto const& row : cases) {
    SCOPED_TRACE(row.entries);
    Bundle const bundle = Make("v" + std::to_string(++number), row.entries);
    EXPECT_EQ(Answer("version", "bundle", &bundle), row.version);
    EXPECT_EQ(Answer("bundle version", "bundle", &bundle), row.bundle_version);
  }
  Bundle const without_texts = Make("w",
                                    "<key>CFBundleVersion</key><integer>2</integer>"
                                    "<key>CFBundleShortVersionString</key><array/>");
  EXPECT_THROW(version_of(without_texts), CFCastError<CFStringRef>);
  EXPECT_THROW(bundle_version_of(without_texts), CFCastError<CFStringRef>);
}

TEST_F(Bundles, HaveATypeAndACreator) {
  Bundle const described =
      Make("a", Entry("CFBundlePackageType", "APPL") + Entry("CFBundleSignature", "ttxt"));
  EXPECT_EQ(Ask<file_type>("type", "bundle", &described).code, 0x4150504CU);
  EXPECT_EQ(Ask<file_signature>("creator", "bundle", &described).code, 0x74747874U);
}

TEST_F(Bundles, HaveAGlobalAndALocalDictionary) {
  tree_.Write("/a/Contents/Resources/English.lproj/InfoPlist.strings", "Greeting = \"Hello\";");
  tree_.Write("/a/Contents/Resources/en.lproj/InfoPlist.strings", "Greeting = \"Hello\";");
  Bundle const bundle =
      Make("a", Entry("Greeting", "greeting") + Entry("CFBundleDevelopmentRegion", "English"));
  auto const greeting = [&](char const* phrase) {
    auto const dictionary = Ask<OSXDictionary>(phrase, "bundle", &bundle);
    return Shown(string_of_dictionary(Bytes("Greeting"), 8, dictionary));
  };
  EXPECT_EQ(greeting("global dictionary"), "greeting");
  EXPECT_EQ(greeting("local dictionary"), "Hello");

  tree_.Write("/b/Contents/Info.plist", "damaged");
  Bundle const without = bundle_of(Folder("b"));
  EXPECT_THROW(global_dictionary_of(without), NoSuchObject);
  EXPECT_THROW(local_dictionary_of(without), NoSuchObject);
}

TEST_F(Bundles, AreFoundByIdentifierOnceTheyWereOpened) {
  std::string const identifier = "example.caf\u00E9";
  EXPECT_THROW(Named("example.caf\x8E"), NoSuchObject);
  Bundle const bundle = Make("a", Entry("CFBundleIdentifier", identifier));
  EXPECT_EQ(Named("example.caf\x8E").Reference(), bundle.Reference());
  EXPECT_THROW(Named(identifier), NoSuchObject) << "names are Mac Roman";
  EXPECT_THROW(bundle_named(nullptr, 0x80000000), NoSuchObject);
  EXPECT_THROW(bundle_named(nullptr, ~0UL), NoSuchObject);
  EXPECT_THROW(Named(""), NoSuchObject);
}

TEST_F(Bundles, AreGivenBack) {
  auto first = std::make_unique<Bundle>(Make("a", Entry("CFBundleIdentifier", "example.kept")));
  CFBundleRef const reference = first->Reference();
  CFRetain(reference);
  CFIndex const held = CFGetRetainCount(reference);
  {
    Bundle const other = Named("example.kept");
    EXPECT_EQ(CFGetRetainCount(reference), held + 1);
  }
  first.reset();
  EXPECT_EQ(CFGetRetainCount(reference), held - 1);

  OSXDictionary const dictionary = global_dictionary_of(Make("c", Entry("a", "b")));
  EXPECT_EQ(size_of_dictionary(dictionary), 1);
  CFRelease(reference);
}

}  // namespace
