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
  // What XML allows comes back as it was.
  const std::string back =
      test::OutputOf("xmllint --xpath 'string(/a/b)' " + (folder / "x.xml").string());
  EXPECT_NE(back.find(" !\"#$%&'()*+,-./0123456789:;<=>?"), back.npos);
  EXPECT_NE(back.find("\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD😀龍]]>&amp;--\xEF\xBF\xBD"),
            back.npos);
}

TEST(XmlOut, Bytes) {
  MemoryFile file;
  XmlOut xml(&file);
  xml.Declaration();
  xml.DocumentType("a SYSTEM \"x\"");
  xml.Comment(u"a--b -");
  xml.Begin("a");
  xml.Attribute("t", u"<\"&\r\n\t>");
  xml.Begin("b");
  xml.Text(u"<\"&\r\n\t>");
  xml.End();
  xml.Comment(u"c");
  xml.Begin("c");
  *xml.BeginAttribute("n") += "1 2";
  xml.EndAttribute();
  xml.End();
  xml.End();
  EXPECT_TRUE(xml.Finish().ok());
  EXPECT_EQ(file.bytes,
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE a SYSTEM \"x\">\n"
            "<!--a- -b - -->\n"
            "<a t=\"&lt;&quot;&amp;&#13;&#10;&#9;&gt;\">\n"
            " <b>&lt;\"&amp;&#13;\n\t&gt;</b>\n <!--c-->\n <c n=\"1 2\"/>\n</a>\n");
}

TEST(XmlOut, LongDocumentsReachTheFileInPiecesAndFailuresAreKept) {
  for (const size_t capacity : {MemoryFile::kUnlimited, size_t{1'500'000}}) {
    MemoryFile file(capacity);
    XmlOut xml(&file);
    xml.Begin("a");
    for (int i = 0; i < 300000; ++i) {
      xml.Begin("b");
      xml.End();
    }
    xml.End();
    const bool fits = capacity == MemoryFile::kUnlimited;
    EXPECT_EQ(xml.Finish().ok(), fits);
    EXPECT_GT(file.writes, 1u);
    EXPECT_EQ(file.bytes.size(), fits ? 4 + 300000 * 6 + 5 : capacity);
  }
}

}  // namespace
}  // namespace kerno
