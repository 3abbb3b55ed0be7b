#include "LispText.h"

#include "RealLisp.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

struct TextCase {
    const char* text;
    HostValue value;
};

struct ErrorCase {
    const char* text;
    const char* message;
};

TEST(LispTextTest, PrintsCells) {
    const std::vector<TextCase> cases = {
        {"nil T -7 \"a\"", HostValue().nil().t().shortInt(-7).string("a")},
        {"3.0", HostValue().real(3)},
        {"-2.5", HostValue().real(-2.5)},
        {"1e+20", HostValue().real(1e20)},
        {R"("q\"b\\n\nt\t")", HostValue().string("q\"b\\n\nt\t")},
        {"nil", HostValue().begin().end()},
        {"(1 nil (T))", HostValue().begin().shortInt(1).begin().end().begin().t().end().end()},
        // Broken cell lists still print as balanced text.
        {"1", HostValue().end().shortInt(1).end()},
        {"(1 (\"\"))", HostValue().begin().shortInt(1).begin().string("")},
        {"2", HostValue().append(HostCell::Marker(42)).shortInt(2)},
        // Regression: a list holding only cells without text printed as "()", which reads
        // back as nil and so printed differently the second time.
        {"(nil 1 nil)", HostValue()
                            .begin()
                            .begin()
                            .append(HostCell::Marker(42))
                            .end()
                            .shortInt(1)
                            .begin()
                            .append(HostCell::Marker(42))},
    };
    for (const TextCase& c : cases) {
        EXPECT_EQ(LispText::Print(c.value), QString::fromUtf8(c.text));
    }
}

TEST(LispTextTest, ReadsData) {
    const std::vector<TextCase> cases = {
        {"32767", HostValue().shortInt(32767)},
        {"-32768", HostValue().shortInt(-32768)},
        {"+12", HostValue().shortInt(12)},
        {"1.", HostValue().real(1.0)},
        {".5", HostValue().real(0.5)},
        {"-2.5e3", HostValue().real(-2500.0)},
        {"4E2", HostValue().real(400.0)},
        {"NIL", HostValue().nil()},
        {"t", HostValue().t()},
        {"( )", HostValue().nil()},
        {R"("a\"b\\c\nd\te\q")", HostValue().string("a\"b\\c\nd\teq")},
        {" '( 1 (\"x\" 'nil) ()\n)\t",
         HostValue().begin().shortInt(1).begin().string("x").nil().end().nil().end()},
    };
    for (const TextCase& c : cases) {
        HostValue value;
        QString error;
        EXPECT_TRUE(LispText::Read(QString::fromUtf8(c.text), value, &error)) << c.text;
        EXPECT_EQ(value, c.value) << c.text << " read as " << LispText::Print(value).toStdString();
    }
}

TEST(LispTextTest, PrintedValuesReadBack) {
    const std::vector<HostValue> values = {
        HostValue().real(0.1),
        HostValue().real(-123456.789012345),
        HostValue().real(6.02214076e-23),
        HostValue().string("tab\there \"quoted\" back\\slash\nline"),
        HostValue().begin().shortInt(0).string("").nil().shortInt(5).string("V").real(1.0).end(),
        HostValue().begin().begin().begin().t().end().end().real(2).end(),
    };
    for (const HostValue& value : values) {
        HostValue back;
        const QString text = LispText::Print(value);
        EXPECT_TRUE(LispText::Read(text, back)) << text.toStdString();
        EXPECT_EQ(back, value) << text.toStdString();
    }
}

// Regression: infinities printed as "inf", NaN as "nan" and the largest reals as
// "1.79769313486232e+308", none of which any Lisp reads back.
TEST(LispTextTest, EveryPrintedRealReadsBackInARealLisp) {
    const double huge = std::numeric_limits<double>::max();
    const std::vector<TextCase> cases = {
        {"1.7976931348623157e+308", HostValue().real(std::numeric_limits<double>::infinity())},
        {"-1.7976931348623157e+308", HostValue().real(-std::numeric_limits<double>::infinity())},
        {"0.0", HostValue().real(std::nan(""))},
        {"1.7976931348623157e+308", HostValue().real(huge)},
        {"-1.7976931348623157e+308", HostValue().real(-huge)},
        {"4.94065645841247e-324", HostValue().real(std::numeric_limits<double>::denorm_min())},
        {"0.0", HostValue().real(-0.0)},
    };
    QStringList printed;
    for (const TextCase& c : cases) {
        const QString text = LispText::Print(c.value);
        EXPECT_EQ(text, QString::fromUtf8(c.text));
        HostValue back;
        EXPECT_TRUE(LispText::Read(text, back)) << c.text;
        printed.append(text);
    }
    const RealLispRun lisp =
        RunRealLisp(QStringLiteral("(print (read))"), u'(' + printed.join(u' ') + u')');
    if (!lisp.found) {
        GTEST_SKIP() << "neither sbcl nor clisp is on PATH; the Lisp reader check is skipped";
    }
    EXPECT_EQ(lisp.output.toStdString(),
              "(1.7976931348623157e308 -1.7976931348623157e308 0.0 1.7976931348623157e308 "
              "-1.7976931348623157e308 4.9406564584124654e-324 0.0)");
}

TEST(LispTextTest, RejectsBadData) {
    const std::vector<ErrorCase> cases = {
        {"", "end of the text"},
        {"32768", "outside -32768..32767"},
        {"-99999999999999999999", "outside -32768..32767"},
        {"1e999", "out of range"},
        {"foo", "unknown symbol 'foo' at position 1"},
        {"(1 .)", "unknown symbol '.' at position 4"},
        {"(1 2", "missing ')' for the list opened at position 1"},
        {")", "unexpected ')' at position 1"},
        {"1 2", "unexpected text at position 3"},
        {"(1))", "unexpected text at position 4"},
        {"  \"abc\\\"", "unterminated string starting at position 3"},
    };
    for (const ErrorCase& c : cases) {
        HostValue value = HostValue().t();
        QString error;
        EXPECT_FALSE(LispText::Read(QString::fromUtf8(c.text), value, &error)) << c.text;
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.message))) << error.toStdString();
        EXPECT_EQ(value, HostValue().t()) << "failed read must leave the value alone";
    }
}

// Regression: an error quoted the whole offending token, so a huge input gave a message
// as huge.
TEST(LispTextTest, ErrorsQuoteAShortExcerptOfAHugeToken) {
    const QString huge = QString(100000, u'x');
    const std::vector<std::pair<QString, QString>> cases = {
        {huge,
         "unknown symbol 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx... (100000 characters)' "
         "at position 1"},
        {"(f (" + huge + "))",
         "cannot evaluate (xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx... (100000 characters) ...) "
         "at position 4"},
        {"(f " + QString(100000, u'9') + ")",
         "integer 9999999999999999999999999999999999999999... (100000 characters) at position 4 "
         "is outside -32768..32767"},
    };
    for (const auto& [text, message] : cases) {
        HostValue value;
        QString name;
        QString error;
        EXPECT_FALSE(text.startsWith(u'(') ? LispText::ReadCall(text, name, value, &error)
                                           : LispText::Read(text, value, &error));
        EXPECT_EQ(error, message);
    }
}

TEST(LispTextTest, LimitsNesting) {
    HostValue value;
    QString error;
    const QString deep = QString(200000, u'(');
    EXPECT_FALSE(LispText::Read(deep, value, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("nested deeper than 1000"))) << error.toStdString();
    EXPECT_FALSE(LispText::Read(QString(200000, u'\''), value, &error));
    QString name;
    const QString deepCall = QStringLiteral("(f ") + QStringLiteral("(list ").repeated(50000);
    EXPECT_FALSE(LispText::ReadCall(deepCall, name, value, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("nested deeper than 1000"))) << error.toStdString();

    const QString fine = QString(900, u'(') + QString(900, u')');
    EXPECT_TRUE(LispText::Read(fine, value, &error)) << error.toStdString();
}

// Arguments are compared as printed text; printing keeps reals, shorts, strings and nil apart.
struct CallCase {
    const char* text;
    const char* name;
    const char* args;
};

TEST(LispTextTest, ReadsCalls) {
    const std::vector<CallCase> cases = {
        {R"((zel_mbsel '(0 "" nil 5 "V" 1.0 nil "" nil)))", "zel_mbsel",
         R"((0 "" nil 5 "V" 1.0 nil "" nil))"},
        {"(zel_delay)", "zel_delay", ""},
        {" ( c:ZLPLCDB ) ", "c:ZLPLCDB", ""},
        {R"((a-b+*x 1 2.5 "s" nil T '() (list) '"q"))", "a-b+*x", R"(1 2.5 "s" nil T nil nil "q")"},
        {R"((f (list 1 (LIST "a" '(2 ('3)))) '7))", "f", R"((1 ("a" (2 (3)))) 7)"},
    };
    for (const CallCase& c : cases) {
        QString name;
        HostValue args;
        QString error;
        EXPECT_TRUE(LispText::ReadCall(QString::fromUtf8(c.text), name, args, &error))
            << c.text << ": " << error.toStdString();
        EXPECT_EQ(name, QString::fromUtf8(c.name));
        EXPECT_EQ(LispText::Print(args), QString::fromUtf8(c.args)) << c.text;
    }
}

TEST(LispTextTest, RejectsBadCalls) {
    const std::vector<ErrorCase> cases = {
        {"zel_delay", "expected '(' at position 1"},
        {"()", "expected a function name at position 2"},
        {"(5 1)", "expected a function name at position 2"},
        {"(f x)", "unknown symbol 'x' at position 4"},
        {"(f (g 1))", "cannot evaluate (g ...) at position 4"},
        {"(f (list (g)))", "cannot evaluate (g ...) at position 10"},
        {"(f ((list)))", "cannot evaluate the list at position 4"},
        {"(f '(1 (list 2)))", "unknown symbol 'list'"},
        {"(f 1", "missing ')' at the end of the call"},
        {"(f 40000)", "outside -32768..32767"},
        {"(f) (g)", "unexpected text at position 5"},
    };
    for (const ErrorCase& c : cases) {
        QString name = QStringLiteral("kept");
        HostValue args;
        QString error;
        EXPECT_FALSE(LispText::ReadCall(QString::fromUtf8(c.text), name, args, &error)) << c.text;
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.message)))
            << c.text << ": " << error.toStdString();
        EXPECT_EQ(name, QStringLiteral("kept"));
    }
}

}  // namespace
