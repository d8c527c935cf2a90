#include "export/xml_out.h"

#include <gtest/gtest.h>

#include "support/memory_file.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::MemoryFile;

TEST(XmlOut, WritesWhatReadersAccept) {
  std::u16string every;
  for (char16_t c = 1; c < 0x100; ++c) every.push_back(c);
  every += u"\xD800x\xDC00\xFFFE\xFFFF\xD83D\xDE00龍]]>&amp;--";
  every.push_back(0);
  MemoryFile file;
  XmlOut xml(&file);
  xml.Declaration();
  for (const std::u16string& comment : {every, std::u16string(u"-"), std::u16string(u"--"),
                                        std::u16string(u"a-->b---"), std::u16string()}) {
    xml.Comment(comment);
  }
  xml.Begin("a");
  xml.Attribute("every", every);
  xml.Begin("b");
  xml.Text(every);
  xml.End();
  xml.Begin("c");
  xml.End();
  xml.End();
  ASSERT_TRUE(xml.Finish().ok());
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "x.xml", file.bytes);
  EXPECT_EQ(test::OutputOf("xmllint --noout --nonet " + (folder / "x.xml").string()), "");
  // What XML allows comes back as it was, the line ends of an attribute too.
  EXPECT_NE(test::OutputOf("xmllint --xpath 'string(/a/@every)' " + (folder / "x.xml").string())
                .find("\t\n"),
            std::string::npos);
  const std::string back =
      test::OutputOf("xmllint --xpath 'string(/a/b)' " + (folder / "x.xml").string());
  EXPECT_NE(back.find(" !\"#$%&'()*+,-./0123456789:;<=>?"), back.npos);
  EXPECT_NE(back.find("\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD😀龍]]>&amp;--\xEF\xBF\xBD"),
            back.npos);
}

TEST(XmlOut, AFailureInTheMiddleIsKept) {
  MemoryFile file(1'100'000);
  XmlOut xml(&file);
  for (int i = 0; i < 300000; ++i) {
    xml.Begin("b");
    xml.End();
  }
  EXPECT_GT(file.writes, 0u) << "in pieces";
  EXPECT_FALSE(xml.Finish().ok());
}

}  // namespace
}  // namespace kerno
