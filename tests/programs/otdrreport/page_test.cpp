#include "programs/otdrreport/page.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QFile>

#include <gmock/gmock.h>

namespace {

using otdrreport::pageOf;
using testing::HasSubstr;
using testing_support::Bytes;
using testing_support::expectWarning;
using testing_support::TraceFiles;

class Page : public testing::Test
{
protected:
    QString write(const QString& name, const QByteArray& text) const
    {
        const auto* first = reinterpret_cast<const std::byte*>(text.constData());
        return files.write(name, Bytes(first, first + text.size()));
    }

    std::string page(const QByteArray& text, const QVariantHash& values = {}) const
    {
        const auto made = pageOf(values, write("t.html", text));
        return made ? made->toStdString() : "error: " + made.error().message;
    }

    TraceFiles files;
};

TEST_F(Page, PutsValuesIntoTheTemplate)
{
    EXPECT_EQ(page("<p>{{ a.b }}</p>", {{"a", QVariantHash {{"b", "x"}}}}), "<p>x</p>");
}

TEST_F(Page, LineOfATagAloneLeavesNone)
{
    EXPECT_EQ(page("<ul>\n{% for e in list %}\n<li>{{ e }}</li>\n{% endfor %}\n</ul>\n",
                   {{"list", QStringList {"x", "y"}}}),
              "<ul>\n<li>x</li>\n<li>y</li>\n</ul>\n");
}

TEST_F(Page, EscapesEveryValue)
{
    EXPECT_EQ(page("<p title=\"{{ a }}\">", {{"a", "<script>\"'&"}}),
              "<p title=\"&lt;script&gt;&quot;&#39;&amp;\">");
}

TEST_F(Page, FiltersAndBranchesEscapeToo)
{
    const QVariantHash values {{"a", "\"<"}, {"list", QStringList {"'<", "\"<"}}};
    EXPECT_EQ(page("{{ a|default:\"-\" }}", values), "&quot;&lt;");
    EXPECT_EQ(page("{% if a %}{{ a }}{% endif %}", values), "&quot;&lt;");
    EXPECT_EQ(page("{% for e in list %}{{ e }};{% endfor %}", values), "&#39;&lt;;&quot;&lt;;");
}

TEST_F(Page, MayIncludeATemplateBesideIt)
{
    write("part.html", "[{{ a }}]");
    EXPECT_EQ(page("{% include \"part.html\" %}", {{"a", "x"}}), "[x]");
}

TEST_F(Page, MayExtendTheBuiltInOne)
{
    const std::string html =
        page("{% extends \"report.html\" %}{% block foot %}Our firm{% endblock %}");
    EXPECT_THAT(html, HasSubstr("Our firm"));
    EXPECT_THAT(html, HasSubstr("<!DOCTYPE html>"));
    EXPECT_THAT(html, testing::Not(HasSubstr("<footer>")));
}

TEST_F(Page, TemplateOfMoreThan16MegabytesIsNotRead)
{
    const QString path = files.path("large.html");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize((16 << 20) + 1));
    const auto made = pageOf({}, path);
    ASSERT_FALSE(made);
    EXPECT_THAT(made.error().message, HasSubstr("large.html: the template cannot be read"));
}

TEST_F(Page, NothingOutsideItsDirectoryIsIncluded)
{
    expectWarning("../outside.html");
    EXPECT_THAT(page("{% include \"../outside.html\" %}"), HasSubstr("error: "));
    expectWarning("/etc/hostname");
    EXPECT_THAT(page("{% include \"/etc/hostname\" %}"), HasSubstr("error: "));
}

TEST_F(Page, ErrorInAnIncludedTemplateIsAnError)
{
    write("part.html", "{% include \"missing.html\" %}");
    expectWarning("missing.html"); // from it and from the one that includes it
    expectWarning("missing.html");
    EXPECT_THAT(page("x{% include \"part.html\" %}"), HasSubstr("error: "));
}

TEST_F(Page, ErrorNamesTheTemplateAndWhatIsWrong)
{
    expectWarning("Unclosed tag");
    expectWarning("Invalid block tag");
    expectWarning("Unknown filter");
    EXPECT_THAT(page("{% if a %}no end"), HasSubstr("t.html: "));
    EXPECT_THAT(page("{% nonsense %}"), HasSubstr("nonsense"));
    EXPECT_THAT(page("{{ a|nofilter }}"), HasSubstr("nofilter"));
    const auto missing = pageOf({}, files.path("missing.html"));
    ASSERT_FALSE(missing);
    EXPECT_THAT(missing.error().message, HasSubstr("missing.html: the template cannot be read"));
    EXPECT_FALSE(pageOf({}, files.path("."))) << "a directory";
}

TEST_F(Page, ScriptIsAllowedByItsHashAlone)
{
    const auto made = pageOf({}, {});
    ASSERT_TRUE(made) << made.error().message;
    EXPECT_EQ(made->count("script-src 'sha256-"), 1);
    EXPECT_FALSE(made->contains("script-src 'unsafe-inline'"));
}

} // namespace
