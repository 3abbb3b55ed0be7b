#include "PlcdbProcess.h"
#include "RealLisp.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

// Regression: a box value "1e-400 mm" reached the value list as ("inf" ("mm")) and a
// scale of 1e999 as inf, which no Lisp reads.
TEST(ReadableAnswers, NumbersBeyondTheDoubleRangeGiveAnAnswerThatLispReads) {
    QTemporaryDir dir;
    const QString database = dir.filePath(QStringLiteral("ZEL_PLC.MDB"));
    ASSERT_EQ(RunPlcdb({"init", database}).status, 0);
    const QByteArray document = R"({"format":"plcdb","version":1,"modules":[
        {"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C",
         "BoxA1":"1e-400 mm","BoxA2":"2 mm","BoxA3":"3 mm","BoxA4":"4 mm",
         "BoxA5":"5 mm","BoxA6":"6 mm"}}]})";
    ASSERT_EQ(RunPlcdb({"--db", database, "import", "-"}, document).status, 0);

    const PlcdbRun run =
        RunPlcdb({"--db", database, "select", "--manufacturer", "M", "--series", "S", "--type", "T",
                  "--catalog", "C", "--style", "1", "--orient", "H", "--scale", "1e999"});
    ASSERT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_EQ(run.out.toStdString(),
              R"((("C" "M" "" "" "" ("2.0000" ("mm")) ("0.0000" ("mm")) ("3.0000" ("mm")) )"
              R"(("4.0000" ("mm")) "" nil ("6.0000" ("mm")) ("5.0000" ("mm")) "" "") nil nil )"
              R"(nil ("1" "H" 1.7976931348623157e+308 nil)))"
              "\n");

    const RealLispRun lisp = RunRealLisp(QStringLiteral("(print (length (read)))"), run.out);
    if (!lisp.found) {
        GTEST_SKIP() << "neither sbcl nor clisp is on PATH; the Lisp reader check is skipped";
    }
    EXPECT_EQ(lisp.output, QStringLiteral("5")) << qPrintable(run.out);
}
