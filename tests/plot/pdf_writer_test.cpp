// A PDF that is written object by object.

#include "inflate.h"
#include "pdf_writer.h"
#include "plot_scene.h"

namespace {

std::string contentOf(const plot::PdfWriter& pdf)
{
    std::string bytes(pdf.file().size(), '\0');
    EXPECT_TRUE(pdf.file().read(0, std::as_writable_bytes(std::span(bytes))));
    return bytes;
}

/// A document of so many pages without anything on them.
std::string emptyPages(const TempFolder& folder, int count)
{
    plot::PdfWriter pdf(folder.file("."));
    const int tree = pdf.reserve(), never = pdf.reserve();
    std::string kids;
    for (int i = 0; i < count; ++i)
        kids += plot::pdfReference(pdf.write("<< /Type /Page /MediaBox [0 0 9 9] /Parent " +
                                             plot::pdfReference(tree) + " /Contents " +
                                             plot::pdfReference(never) + " >>")) +
                " ";
    pdf.write(tree, "<< /Type /Pages /Count " + std::to_string(count) + " /Kids [" + kids + "] >>");
    const int root = pdf.write("<< /Type /Catalog /Pages " + plot::pdfReference(tree) + " >>");
    EXPECT_TRUE(pdf.finish(root, pdf.write("<< /Producer (nobody) >>")));
    return contentOf(pdf);
}

} // namespace

TEST(PdfWriter, ManyObjectsAreFoundByOthers)
{
    const TempFolder folder;
    for (const int count : {1, 99, 250}) {
        folder.write("out.pdf", emptyPages(folder, count));
        if (!hasProgram("qpdf") || !hasProgram("pdfinfo"))
            GTEST_SKIP();
        const std::string path = folder.file("out.pdf").utf8();
        int code = 0;
        const std::string said = printed("qpdf --check " + path, &code);
        EXPECT_EQ(code, 0) << said;
        EXPECT_NE(printed("pdfinfo " + path).find("Pages:           " + std::to_string(count)),
                  std::string::npos);
    }
}

TEST(PdfWriter, TheIdComesFromTheContent)
{
    const TempFolder folder;
    EXPECT_EQ(emptyPages(folder, 3), emptyPages(folder, 3));
    const auto idOf = [](const std::string& pdf) { return pdf.substr(pdf.find("/ID ["), 40); };
    EXPECT_NE(idOf(emptyPages(folder, 3)), idOf(emptyPages(folder, 4)));
}

TEST(PdfWriter, AFullDiskIsToldAndEndsTheFile)
{
    plot::PdfWriter pdf(u"/nowhere/at/all");
    pdf.writeStream("", std::string(1 << 20, 'x'), false);
    EXPECT_FALSE(pdf.status());
    EXPECT_FALSE(pdf.finish(1, 1));
}

TEST(PdfText, IsReadableInAnyScript)
{
    EXPECT_EQ(plot::pdfText(u"Plan (1\\2)"), "(Plan \\(1\\\\2\\))");
    EXPECT_EQ(plot::pdfText(u"\u00C4\U0001F3E0"), "<FEFF00C4D83CDFE0>");
    EXPECT_EQ(plot::pdfText(u""), "()");
    EXPECT_EQ(plot::pdfText(u"a\n"), "<FEFF0061000A>");
}

TEST(PdfReal, IsShort)
{
    EXPECT_EQ(plot::pdfReal(12.5004, 3), "12.5");
    EXPECT_EQ(plot::pdfReal(100, 3), "100");
    EXPECT_EQ(plot::pdfReal(-0.0001, 3), "0");
}
