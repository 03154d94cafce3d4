// The type "version": reading, showing, comparing, and its parts. Versions compare with strings as
// well: `version of bios < "1.10"`; a string that is no version is no such object then.
#include <string_view>

#include "frame/registration.h"
#include "portable_inspectors/text.h"
#include "portable_inspectors/version_text.h"

namespace {

using Text = inspector_string;

inspector_version version_named(unsigned char const* start, unsigned long length) {
  return MacintoshPlatform::TextToVersion(ConstData(start, length));
}
inspector_version StringAsVersion(Text const& string) {
  return version_named(string.start, string.length);
}

inspector_version const& AsVersion(inspector_version const& version) { return version; }
inspector_version AsVersion(Text const& string) { return StringAsVersion(string); }

template <class L, class R>
boolean Equal(L const& left, R const& right) {
  return MacintoshPlatform::Compare(AsVersion(left), AsVersion(right)) == 0;
}
template <class L, class R>
boolean Less(L const& left, R const& right) {
  return MacintoshPlatform::Compare(AsVersion(left), AsVersion(right)) < 0;
}

template <int index>
integer NumberOf(inspector_version const& version) {
  return MacintoshPlatform::PartsOf(version).numbers[index];
}

Text stage_of_version(inspector_version const& version) {
  constexpr std::string_view kNames[] = {"development", "development",       "alpha",
                                         "beta",        "release candidate", "release"};
  return Slice(kNames[static_cast<std::size_t>(MacintoshPlatform::PartsOf(version).stage)]);
}

integer non_release_revision_of_version(inspector_version const& version) {
  return MacintoshPlatform::PartsOf(version).non_release_revision;
}

Type<inspector_version, kPlainBytes> type;
NamedGlobalProperty<inspector_version> version("version", "versions", version_named,
                                               DependsOnlyOnParameters);
Cast<Text, inspector_version> string_as_version("version", StringAsVersion,
                                                DependsOnlyOnParameters);
Cast<inspector_version, Text> version_as_string("string", AsString, DependsOnlyOnParameters);
RelationEqual<inspector_version, inspector_version> equal(DependsOnlyOnParameters, Equal);
RelationEqual<inspector_version, Text> equal_string(DependsOnlyOnParameters, Equal);
RelationEqual<Text, inspector_version> string_equal(DependsOnlyOnParameters, Equal);
Operator2<inspector_version, inspector_version, boolean> less(kOperatorLess, Less,
                                                              DependsOnlyOnParameters);
Operator2<inspector_version, Text, boolean> less_string(kOperatorLess, Less,
                                                        DependsOnlyOnParameters);
Operator2<Text, inspector_version, boolean> string_less(kOperatorLess, Less,
                                                        DependsOnlyOnParameters);
Property<inspector_version, integer> major_revision("major revision", "major revisions",
                                                    NumberOf<0>, DependsOnlyOnParameters);
Property<inspector_version, integer> minor_revision("minor revision", "minor revisions",
                                                    NumberOf<1>, DependsOnlyOnParameters);
Property<inspector_version, integer> bug_fix_revision("bug fix revision", "bug fix revisions",
                                                      NumberOf<2>, DependsOnlyOnParameters);
Property<inspector_version, Text> stage("stage", "stages", stage_of_version,
                                        DependsOnlyOnParameters);
Property<inspector_version, integer> non_release_revision("non release revision",
                                                          "non release revisions",
                                                          non_release_revision_of_version,
                                                          DependsOnlyOnParameters);

}  // namespace
