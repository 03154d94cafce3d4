// Captures without names.

#include "tests/host/child_process.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

constexpr char kDocument[] = R"(<plist version="1.0"><dict>
  <key>FormatVersion</key><integer>1</integer> <key>Platform</key><string>linux</string>
  <key>HostName</key><string>Webserver7.corp.example.com</string>
  <key>ComputerName</key><string>Anneliese's Machine</string>
  <key>HostIdentifier</key><string>0123456789abcdef0123456789abcdef</string>
  <key>CurrentUser</key><string>anneliese</string>
  <key>CurrentHome</key><string>/home/anneliese</string>
  <key>Environment</key><dict><key>HOME</key><string>/home/anneliese</string>
    <key>MAIL</key><string>Anneliese@webserver7</string>
    <key>ANNELIESE_DATA</key><string>/srv</string></dict>
  <key>EnvironmentNames</key><array><string>HOME</string><string>MAIL</string>
    <string>ANNELIESE_DATA</string></array>
  <key>Processes</key><array>
    <dict><key>pid</key><integer>5</integer><key>name</key><string>agent-anneliese</string></dict>
    <dict><key>pid</key><integer>7</integer><key>name</key><string>nginx</string></dict></array>
  <key>SCSIBuses</key><array><dict><key>Version</key><integer>2</integer>
    <key>FeatureFlags</key><integer>0</integer><key>HBAInquiry</key><integer>0</integer>
    <key>Targets</key><array><dict><key>Target</key><integer>0</integer><key>Inquiry</key>
    <data>AAACAiAAAABTRUFHQVRFIFNUMzI0MDA0OVMgICAgICAwMDAzWkQ3UTM0OTkgICAgICAgICAgICA=</data>
    </dict></array></dict></array>
  <key>ConsoleUser</key><dict><key>Name</key><string>zacharias</string></dict>
  <key>Directory</key><dict>
    <key>dsRecTypeStandard:Users</key><array><dict>
      <key>dsAttrTypeStandard:RecordName</key><string>anneliese</string>
      <key>dsAttrTypeStandard:AppleMetaNodeLocation</key><string>/LDAPv3/dc1</string>
      <key>dsAttrTypeNative:distinguishedName</key>
      <string>CN=Anneliese Q. Oberhuber,OU=Sales,DC=intern</string></dict></array>
    <key>dsRecTypeStandard:Groups</key><array><dict>
      <key>dsAttrTypeStandard:RecordName</key><string>anneliese</string>
      <key>dsAttrTypeStandard:GroupMembership</key><array><string>zacharias</string>
        <string>CN=Bart Vandermeer,DC=intern</string></array></dict></array></dict>
  <key>DirectoryAnswers</key><dict>
    <key>/Search dsRecTypeStandard:Users dsAttrTypeStandard:RecordName==kunigunde, dsAttributesAll, 1</key>
    <array/>
    <key>/Local/Default dsRecTypeStandard:Users dsAttributesAll,</key>
    <array><integer>0</integer></array></dict>
  <key>SystemVersion</key><dict><key>ProductName</key><string>Debian</string></dict>
</dict></plist>)";

constexpr char kDevices[] = R"(<plist version="1.0"><dict>
  <key>IORegistryEntryName</key><string>Root</string>
  <key>IORegistryEntryChildren</key><array><dict>
    <key>IORegistryEntryName</key><string>board</string>
    <key>IOPlatformSerialNumber</key><string>C02XG0FDJG5H</string>
    <key>IOPlatformUUID</key><string>564D3A0F-1B2C-3D4E-5F60-718293A4B5C6</string>
    <key>serial-number</key><data>QzAyWEcwRkRKRzVIAAA=</data>
    <key>address</key><string>00:14:c2:41:ff:00</string>
    <key>note</key><string>C02XG0FDJG5H of anneliese</string>
    <key>model</key><string>MacPro5,1</string>
  </dict></array></dict></plist>)";

constexpr char kNames[] =
    "ZD7Q3499|zacharias|kunigunde|oberhuber|vandermeer|anneliese|webserver7|musterfrau|"
    "C02XG0FDJG5H|564D3A0F|c2:41:ff|0123456789abcdef|corp.example";

class RedactedCapture : public testing::Test {
 protected:
  RedactedCapture() {
    folder_.Write("m/machine.plist", kDocument);
    folder_.Write("m/registry/IODeviceTree.plist", kDevices);
    folder_.Write("m/root/etc/passwd",
                  "root:x:0:0:root:/root:/bin/sh\nwww-data:x:33:33::/var/www:\n"
                  "anneliese:x:1000:1000:Lise Musterfrau,,:/home/anneliese:/bin/sh\n");
    folder_.Write("m/root/home/anneliese/anneliese.txt",
                  "Lise Musterfrau, anneliese@webserver7.corp.example.com\n");
    folder_.Write("m/root/home/anneliese/binary", std::string("anneliese\0", 10));
    folder_.Link("m/root/home/anneliese/link", "/home/anneliese/anneliese.txt");
    run_ = Capture("redacted");
  }

  ProcessResult Capture(std::string const& name) const {
    return Gatotu({"--machine", folder_.Path("m"), "capture", folder_.Path(name), "--redact",
                   "--with-files", "/home/**", "/etc/*"});
  }
  std::string Ask(std::string const& machine, std::string const& expression) const {
    return Gatotu({"--machine", folder_.Path(machine), expression}).output;
  }
  std::string Redacted(std::string const& expression) const { return Ask("redacted", expression); }

  TemporaryFolder folder_;
  ProcessResult run_;
};

TEST_F(RedactedCapture, HasNoNameAnywhere) {
  EXPECT_EQ(run_.status, 0) << run_.errors;
  std::string const capture = folder_.Path("redacted");
  // The names are in what it was made of, or this would find nothing in anything.
  EXPECT_EQ(RunShell("grep -rqiE '" + std::string(kNames) + "' " + folder_.Path("m")).status, 0);
  EXPECT_EQ(RunShell("grep -raiE '" + std::string(kNames) + "' " + capture).output, "");
  EXPECT_EQ(RunShell("find " + capture + " -iname '*anneliese*' -o -ilname '*anneliese*'").output,
            "");
  EXPECT_EQ(Gatotu({"capture", capture, "--verify"}).status, 0);
}

// In XML data are not to be read as they stand.
TEST_F(RedactedCapture, HasNoNameInData) {
  std::string const show =
      "python3 -c 'import plistlib, sys; [print(plistlib.load(open(file, \"rb\"))) for file in "
      "sys.argv[1:]]' ";
  for (char const* plist : {"/machine.plist", "/registry/IODeviceTree.plist"}) {
    std::string const names = " | grep -ciE '" + std::string(kNames) + "'";
    EXPECT_EQ(RunShell(show + folder_.Path("m") + plist + names).output, "1\n");
    EXPECT_EQ(RunShell(show + folder_.Path("redacted") + plist + names).output, "0\n");
  }
  EXPECT_EQ(Redacted("products of scsidevices"), Ask("m", "products of scsidevices"));
}

TEST_F(RedactedCapture, AnswersAsBeforeButForNames) {
  for (char const* expression :
       {"pids of processes", "name of process 7", "name of operating system", "length of hostname",
        "number of variables of environment", "lengths of names of users",
        "size of file \"/etc/passwd\"", "line 1 of file \"/etc/passwd\"",
        "number of descendants of folder \"/home\"", "exists current user folder",
        "string \"model\" of dictionary of node \"IODeviceTree:/\" of iokit registry",
        "sizes of files of folders of folder \"/home\""}) {
    EXPECT_EQ(Redacted(expression), Ask("m", expression)) << expression;
    EXPECT_NE(Redacted(expression), "") << expression;
  }
}

TEST_F(RedactedCapture, HasOneStandInForOneName) {
  std::string const home = Redacted("value of variable \"HOME\" of environment");
  std::string const name = home.substr(6, home.size() - 7);
  EXPECT_EQ(name.size(), std::string("anneliese").size());
  // Else whoever knows a name could look for its stand-in.
  Capture("again");
  EXPECT_NE(Ask("again", "value of variable \"HOME\" of environment"), home);
  EXPECT_NE(Ask("redacted", "name of process 5").find("agent-" + name), std::string::npos);
  EXPECT_EQ(Redacted("names of folders of folder \"/home\""), name + "\n");
  std::string const letter = Redacted("content of file \"/home/" + name + "/link\"");
  EXPECT_THAT(letter, testing::AllOf(testing::HasSubstr(name + "@"),
                                     testing::HasSubstr(Redacted("hostname").substr(1, 8))));
  std::string const board = "dictionary of node \"IODeviceTree:/\" of iokit registry";
  std::string const serial = Redacted("string \"IOPlatformSerialNumber\" of " + board);
  EXPECT_EQ(Redacted("string \"note\" of " + board),
            serial.substr(0, serial.size() - 1) + " of " + name + "\n");
}

TEST_F(RedactedCapture, LeavesOutWhatIsNoText) {
  EXPECT_THAT(run_.output, testing::HasSubstr("replaced: /home/anneliese/binary"));
  std::string const missing = "content of file \"binary\" of folder of ";
  EXPECT_THAT(Gatotu({"--machine", folder_.Path("redacted"), missing + "folder \"/home\""}).errors,
              testing::HasSubstr("not recorded: no text"));
}

}  // namespace
}  // namespace gatotu::tests
