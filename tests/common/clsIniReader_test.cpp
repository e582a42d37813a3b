#include "common/clsIniReader.h"

#include <gmock/gmock.h>

#include <fstream>

#include "common/text.h"
#include "support/NumberOf.h"
#include "support/TempFolder.h"

namespace sandrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class clsIniReaderTest : public testing::Test {
 protected:
  const std::string& Write(std::string_view content) {
    std::ofstream(m_path, std::ios::binary | std::ios::trunc) << content;
    return m_path;
  }

  test::TempFolder m_folder;
  std::string m_path = m_folder.Of("a.ini");
  clsIniReader m_reader;
};

TEST_F(clsIniReaderTest, ListsSectionsAndEntriesInFileOrder) {
  Write(
      "before=the first\r\n"
      "  [boot]  ; the rest of a header counts for nothing\r\n"
      "shell = Explorer.exe\r\n;comment=1\r\n\t; another\r\n\r\ndevice=a\rdevice=b\nDEVICE=c=d\n"
      "no equals sign\n[ two words ]\n[open\n[]\nx=1\n[BOOT]\nlate=\"  \"  \nlast=no line end");
  EXPECT_THAT(m_reader.ListSections(m_path), ElementsAre("boot", " two words ", ""));
  EXPECT_THAT(m_reader.ListEntries(m_path, "boot"),
              ElementsAre("shell = Explorer.exe", "device=a", "device=b", "DEVICE=c=d",
                          "no equals sign", "late=\"  \"", "last=no line end"));
  EXPECT_THAT(m_reader.ListEntries(m_path, " Two Words "), ElementsAre("[open"));
  EXPECT_THAT(m_reader.ListEntries(m_path, ""), ElementsAre("x=1"));
  EXPECT_THAT(m_reader.ListEntries(m_path, "other"), IsEmpty());
}

TEST_F(clsIniReaderTest, ReadsEveryEncoding) {
  const std::string plain = "[caf\xC3\xA9]\nk=\xE2\x82\xAC\n";
  std::string big = text::ToUtf16Le(plain);
  for (std::size_t i = 0; i < big.size(); i += 2) std::swap(big[i], big[i + 1]);
  const std::string forms[] = {plain, "\xEF\xBB\xBF" + plain, "\xFF\xFE" + text::ToUtf16Le(plain),
                               "\xFE\xFF" + big, "[caf\xE9]\nk=\x80\n"};
  for (const std::string& form : forms) {
    Write(form);
    EXPECT_THAT(m_reader.ListSections(m_path), ElementsAre("caf\xC3\xA9"));
    EXPECT_THAT(m_reader.ListEntries(m_path, "CAF\xC3\x89"), ElementsAre("k=\xE2\x82\xAC"));
  }
}

TEST_F(clsIniReaderTest, ReadsTheFileThatIsAskedFor) {
  Write("[a]\nx=1\n");
  m_reader.ListSections(m_path);
  EXPECT_THAT(m_reader.ListSections(Write("[b]\n")), ElementsAre("b"));
  const std::string other = m_folder.Of("other.ini");
  std::ofstream(other) << "[b]\ny=2\n";
  EXPECT_THAT(m_reader.ListEntries(other, "b"), ElementsAre("y=2"));
  EXPECT_THAT(m_reader.ListSections(Write("")), IsEmpty());
  EXPECT_EQ(test::NumberOf([&] { m_reader.ListSections(m_folder.Of("missing.ini")); }),
            errnum::PathFileAccess);
  EXPECT_THAT(m_reader.ListEntries(other, "b"), ElementsAre("y=2"));
}

}  // namespace
}  // namespace sandrel
