#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "common/clsFileWorks.h"
#include "platform/registry/DumpKeys.h"
#include "platform/registry/clsRegistry.h"
#include "platform/registry/wineserver.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

const std::string Sid = "S-1-5-21-0-0-0-1000";

// Three hives with what the views and links need.
class clsPrefixRegistry : public testing::Test {
 protected:
  clsPrefixRegistry() {
    Write("system.reg", "Machine",
          R"([Software\\Classes\\.txt] 1
@="machine"
"only"="m"

[Software\\Classes\\.txt\\m] 1

[Software\\Classes\\.zip] 1

[Software\\Target] 1
"here"="1"

)" + Link("Wow\\\\Link", "\\Registry\\Machine\\Software\\Target") +
              Link("Target\\\\Back", "\\Registry\\Machine\\Software") +
              Link("Loop", "\\REGISTRY\\MACHINE\\software\\loop") +
              Link("Circle", "\\REGISTRY\\MACHINE\\software\\circle2") +
              Link("Circle2", "\\REGISTRY\\MACHINE\\software\\circle") +
              Link("Lost", "\\REGISTRY\\USER\\nobody") + Link("Path", "C:\\windows") +
              Link("Empty", "") +
              R"([Software\\Bare] 1
#link

[Software\\Text] 1
#link
"SymbolicLinkValue"="\\Registry\\Machine\\Software\\Target"

[System\\CurrentControlSet\\Hardware Profiles\\0001\\Software] 1
"p"=dword:00000001
)");
    Write("user.reg", "User\\\\" + Sid, R"([Software\\Classes\\.TXT] 1
@="user"

[Software\\Classes\\.new\\u] 1
)");
    Write("userdef.reg", "User\\\\.Default", "[Console] 1\n\"x\"=\"d\"\n");
  }

  void Write(const char* name, const std::string& branch, const std::string& keys) {
    clsFileWorks::ReplaceWhole(m_folder.Of(name),
                               "WINE REGISTRY Version 2\n;; All keys relative to REGISTRY\\\\" +
                                   branch + "\n\n#arch=win64\n\n" + keys);
  }
  std::string Read(const char* name) { return clsFileWorks::ReadWhole(m_folder.Of(name)); }

  // A symbolic link below Software; `key` is escaped.
  static std::string Link(const std::string& key, std::string_view target) {
    std::string hex;
    for (const char c : target) hex += fmt::format("{}{:02x},00", hex.empty() ? "" : ",", c);
    return fmt::format("[Software\\\\{}] 1\n#link\n\"SymbolicLinkValue\"=hex(6):{}\n\n", key, hex);
  }

  TempFolder m_folder;
};

TEST_F(clsPrefixRegistry, PutsTheHivesBelowTheirRoots) {
  const auto registry = OpenPrefixRegistry(m_folder.Path());
  EXPECT_EQ(registry->Roots().size(), 5u);
  EXPECT_EQ(DumpKeys(*registry, hkey::Users),
            "[]\n[.DEFAULT]\n[.DEFAULT\\Console]\nx=1:64000000\n[" + Sid + "]\n[" + Sid +
                "\\Software]\n[" + Sid + "\\Software\\Classes]\n[" + Sid +
                "\\Software\\Classes\\.TXT]\n=1:7500730065007200"
                "0000\n[" +
                Sid + "\\Software\\Classes\\.new]\n[" + Sid + "\\Software\\Classes\\.new\\u]\n");
  EXPECT_EQ(DumpKeys(*registry, hkey::CurrentConfig), "[]\n[Software]\np=4:01000000\n");
  // The user's classes over the machine's.
  EXPECT_EQ(DumpKeys(*registry, hkey::ClassesRoot),
            "[]\n[.TXT]\n=1:75007300650072000000\nonly=1:6d000000\n[.TXT\\m]\n"
            "[.new]\n[.new\\u]\n[.zip]\n");
  EXPECT_EQ(Query(*registry, hkey::CurrentUser, "software\\classes\\.txt", ""),
            "1:75007300650072000000");
  // The user's own SID stands in the file.
  Write("user.reg", "User\\\\S-1-5-21-1-2-3-4", "[K] 1\n");
  EXPECT_EQ(OpenPrefixRegistry(m_folder.Path())->CurrentUserSid(), "S-1-5-21-1-2-3-4");
}

TEST_F(clsPrefixRegistry, FollowsLinksOnce) {
  const auto registry = OpenPrefixRegistry(m_folder.Path());
  // A link shows its target, whose own links can't be opened.
  EXPECT_EQ(DumpKeys(*registry, hkey::LocalMachine, "Software\\Wow"),
            "[Software\\Wow]\n[Software\\Wow\\Link]\nhere=1:31000000\n"
            "[Software\\Wow\\Link\\Back]\ncan't be opened\n");
  // Not inside a link, the same key is followed.
  const std::string direct = DumpKeys(*registry, hkey::LocalMachine, "Software\\Target\\Back");
  EXPECT_NE(direct.find("[Software\\Target\\Back\\Classes\\.zip]\n["), std::string::npos);
  EXPECT_NE(direct.find("[Software\\Target\\Back\\Wow\\Link]\ncan't be opened\n"),
            std::string::npos);
  // What leads to no key can't be opened.
  const std::string all = DumpKeys(*registry, hkey::LocalMachine);
  EXPECT_EQ(all.find("SymbolicLinkValue"), std::string::npos);
  for (const char* name : {"Loop", "Circle", "Circle2", "Lost", "Path", "Empty", "Bare", "Text"}) {
    const std::string path = std::string("Software\\") + name;
    EXPECT_NE(all.find("[" + path + "]\ncan't be opened\n"), std::string::npos) << name;
  }
}

TEST_F(clsPrefixRegistry, RefusesAPrefixWithoutAllItsHives) {
  for (const char* name : {"system.reg", "user.reg", "userdef.reg"}) {
    std::filesystem::rename(m_folder.Of(name), m_folder.Of("away"));
    EXPECT_TRUE(Raises(errnum::Hive, name, [&] { OpenPrefixRegistry(m_folder.Path()); }));
    std::filesystem::rename(m_folder.Of("away"), m_folder.Of(name));
  }
}

TEST_F(clsPrefixRegistry, WritesChangesIntoTheRightHive) {
  const std::string user = Read("user.reg");
  auto registry = OpenPrefixRegistry(m_folder.Path());
  const auto text = [](std::string_view ascii) {
    std::string data;
    for (const char c : ascii) data.append({c, '\0'});
    return data + std::string(2, '\0');
  };
  clsRegistry& r = *registry;
  // Through a view, through a link, below the user's SID, and directly.
  EXPECT_EQ(r.RegSetValueEx(hkey::ClassesRoot, ".txt", "only", 1, text("u")), regstatus::Success);
  EXPECT_EQ(r.RegDeleteValue(hkey::ClassesRoot, ".txt", "ONLY"), regstatus::Success);
  EXPECT_EQ(Query(r, hkey::ClassesRoot, ".txt", "only"), "1:6d000000");  // the machine's is left
  EXPECT_EQ(r.RegDeleteValue(hkey::ClassesRoot, ".txt", "only"), regstatus::Success);
  EXPECT_EQ(r.RegDeleteKey(hkey::ClassesRoot, ".zip"), regstatus::Success);
  EXPECT_EQ(r.RegSetValueEx(hkey::LocalMachine, "Software\\Wow\\Link", "there", 3, "\x01"),
            regstatus::Success);
  EXPECT_EQ(r.RegSetValueEx(hkey::CurrentConfig, "software", "q", 4, std::string(4, '\0')),
            regstatus::Success);
  EXPECT_EQ(r.RegCreateKeyEx(hkey::Users, ".default\\New\\[k]"), regstatus::Success);
  EXPECT_EQ(r.RegCreateKeyEx(hkey::Users, "S-1-5-18\\x"), regstatus::FileNotFound);
  EXPECT_EQ(Query(r, hkey::LocalMachine, "Software\\Target", "there"), "3:01");
  EXPECT_EQ(Read("user.reg"), user);  // nothing is written before the flush
  EXPECT_EQ(r.Flush(), regstatus::Success);

  registry = OpenPrefixRegistry(m_folder.Path());
  EXPECT_EQ(DumpKeys(*registry, hkey::ClassesRoot),
            "[]\n[.TXT]\n=1:75007300650072000000\n[.TXT\\m]\n[.new]\n[.new\\u]\n");
  EXPECT_EQ(Query(*registry, hkey::LocalMachine, "Software\\Target", "there"), "3:01");
  EXPECT_EQ(Query(*registry, hkey::CurrentConfig, "Software", "q"), "4:00000000");
  clsRegistry::Handle key;
  EXPECT_EQ(registry->RegOpenKeyEx(hkey::Users, ".Default\\New\\[k]", key), regstatus::Success);
  const std::string system = Read("system.reg");
  EXPECT_NE(system.find("REGISTRY\\\\Machine\n\n#arch=win64\n\n[Sof"), std::string::npos);
  EXPECT_NE(system.find("\n#link\n\"SymbolicLinkValue\"=hex(6):5c,00,52"), std::string::npos);
}

TEST_F(clsPrefixRegistry, DoesNotOverwriteWhatOthersWrote) {
  const auto registry = OpenPrefixRegistry(m_folder.Path());
  clsRegistry& r = *registry;
  const auto set = [&](const char* name) {
    return r.RegSetValueEx(hkey::CurrentUser, "Software\\Classes", name, 3, "x");
  };
  // Changed before our change: the new content is read first.
  Write("user.reg", "User\\\\" + Sid, "[Software\\\\Classes] 1\n\"theirs\"=\"1\"\n");
  EXPECT_EQ(set("ours"), regstatus::Success);
  EXPECT_EQ(r.Flush(), regstatus::Success);
  EXPECT_NE(Read("user.reg").find("\"theirs\"=\"1\"\n\"ours\"=hex:78\n"), std::string::npos);
  // Changed after it: ours is dropped and said to be.
  EXPECT_EQ(set("lost"), regstatus::Success);
  Write("user.reg", "User\\\\" + Sid, "[Software\\\\Classes] 1\n\"theirs\"=\"2\"\n");
  EXPECT_EQ(r.Flush(), regstatus::AccessDenied);
  EXPECT_EQ(Read("user.reg").find("lost"), std::string::npos);
  EXPECT_EQ(Query(r, hkey::CurrentUser, "Software\\Classes", "theirs"), "1:32000000");
  // Gone: nothing is made up in its place.
  std::filesystem::remove(m_folder.Of("user.reg"));
  EXPECT_EQ(set("ours"), regstatus::AccessDenied);
}

TEST_F(clsPrefixRegistry, IsNotWrittenWhileAServerRuns) {
  struct stat status {};
  ASSERT_EQ(stat(m_folder.Path().c_str(), &status), 0);
  const std::string server = fmt::format("/server-{:x}-{:x}/lock", status.st_dev, status.st_ino);
  ASSERT_EQ(wineserver::LockFiles(m_folder.Path()),
            std::vector<std::string>{fmt::format("/tmp/.wine-{}", status.st_uid) + server});

  // Debian's server notes its folder in the prefix.
  std::string noted = "/tmp/wine-XXXXXX";
  ASSERT_NE(mkdtemp(noted.data()), nullptr);
  clsFileWorks::ReplaceWhole(m_folder.Of("wineserver"), noted.substr(5) + "\n");
  ASSERT_EQ(wineserver::LockFiles(m_folder.Path()).back(), noted + server);
  const std::string lock = noted + server;
  clsFileWorks::MakeFolders(std::filesystem::path(lock).parent_path());
  clsFileWorks::ReplaceWhole(lock, "");
  EXPECT_FALSE(PrefixServerRuns(m_folder.Path()));  // a server that has gone leaves the file

  const auto registry = OpenPrefixRegistry(m_folder.Path());
  registry->RegCreateKeyEx(hkey::LocalMachine, "New");
  const std::string before = Read("system.reg");
  // A lock of an open file stands for that of the server's process on the first byte.
  const int file = open(lock.c_str(), O_RDWR);
  struct flock held {};
  held.l_type = F_WRLCK;
  held.l_len = 1;
  ASSERT_EQ(fcntl(file, F_OFD_SETLK, &held), 0);
  EXPECT_TRUE(PrefixServerRuns(m_folder.Path()));
  EXPECT_EQ(registry->Flush(), regstatus::AccessDenied);
  EXPECT_EQ(Read("system.reg"), before);
  close(file);
  EXPECT_EQ(registry->Flush(), regstatus::Success);  // the change was kept for a later try
  EXPECT_NE(Read("system.reg").find("\n[New] "), std::string::npos);
  std::filesystem::remove_all(noted);
}

}  // namespace
}  // namespace sandrel::test
