#include "PlcdbProcess.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {}  // namespace

TEST(SelectCommand, WithoutADialogTheChoicesFollowTheDialogsRules) {
    // Regression: the headless list took any style, printed the scale as given and ignored
    // the host's precision when --db was given.
    const struct {
        QStringList options;
        QString moduleList;
        QString choices;
    } cases[] = {
        {{"--style", "12", "--scale", "0.123456"},
         SampleNv1408List("2.25", "32.0000", "6.0000"),
         R"(("1" "V" 0.1235 nil))"},
        {{"--style", "0", "--scale", "abc"},
         SampleNv1408List("2.25", "32.0000", "6.0000"),
         R"(("1" "V" 0.0 nil))"},
        {{"--precision", "2", "--style", "3", "--orient", "H", "--scale", "0.123456", "--extra"},
         SampleNv1408List("2.75", "32.00", "6.00"),
         R"(("3" "H" 0.12 1))"},
    };
    for (const auto& c : cases) {
        const QStringList args = QStringList{"--db",
                                             BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")),
                                             "select",
                                             "--manufacturer",
                                             "norvale controls",
                                             "--series",
                                             "NV-100",
                                             "--type",
                                             "Analog Input",
                                             "--catalog",
                                             "nv-1408"} +
                                 c.options;
        const PlcdbRun run = RunPlcdb(args);
        const QString name = c.options.join(u' ');
        EXPECT_EQ(run.status, 0) << qPrintable(name) << qPrintable(run.err);
        EXPECT_TRUE(run.out.startsWith(u'(' + c.moduleList + QStringLiteral(" ((\"HP?SPACE\"")))
            << qPrintable(name) << "\n"
            << qPrintable(run.out.left(400));
        EXPECT_TRUE(run.out.endsWith(QStringLiteral(" (T) ") + c.choices + QStringLiteral(")\n")))
            << qPrintable(name) << "\n"
            << qPrintable(run.out.right(100));
    }
}
