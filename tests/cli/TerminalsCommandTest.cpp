#include "PlcdbProcess.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A copy of the sample database, and plcdb run on it with the sample's block list.
class TerminalsCommand : public testing::Test {
protected:
    void SetUp() override {
        m_database = m_dir.filePath(QStringLiteral("copy.mdb"));
        ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), m_database));
    }

    PlcdbRun Run(const QStringList& args) const {
        return RunPlcdb(QStringList{"--db", m_database, "--support-path",
                                    QDir::toNativeSeparators(BuildPath("sample"))} +
                        args);
    }
    static QStringList Module(const QJsonObject& module) {
        return {"--manufacturer", module["manufacturer"].toString(),
                "--series",       module["series"].toString(),
                "--type",         module["type"].toString(),
                "--catalog",      module["spec"].toObject()["Code"].toString()};
    }
    QByteArray Export(const QStringList& module, const QString& name) const {
        const QString path = m_dir.filePath(name);
        const PlcdbRun run = Run(QStringList{"terminals", "export"} + module + QStringList{path});
        EXPECT_EQ(run.status, 0) << qPrintable(run.err);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    PlcdbRun Import(const QStringList& module, const QByteArray& csv) const {
        const QString path = m_dir.filePath(QStringLiteral("in.csv"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(csv);
        file.close();
        return Run(QStringList{"terminals", "import"} + module + QStringList{path});
    }
    QString Store() const { return Run({"export"}).out; }

    QTemporaryDir m_dir;
    QString m_database;
};

const QStringList kNv1108{"--manufacturer", "Norvale Controls", "--series",  "NV-100",
                          "--type",         "Digital Input",    "--catalog", "NV-1108"};

}  // namespace

TEST_F(TerminalsCommand, EverySampleModuleComesBackByteForByteAndNoStoredRowChanges) {
    const QString before = Store();
    const QJsonArray modules = QJsonDocument::fromJson(before.toUtf8())["modules"].toArray();
    ASSERT_EQ(modules.size(), 12);
    const QStringList first = Module(modules[0].toObject());
    QByteArray firstCsv;
    for (const QJsonValue& value : modules) {
        const QStringList module = Module(value.toObject());
        const QByteArray csv = Export(module, "out.csv");
        const PlcdbRun import = Import(module, csv);
        ASSERT_EQ(import.status, 0) << qPrintable(module.join(u' ') + import.err);
        EXPECT_EQ(Export(module, "again.csv"), csv) << qPrintable(module.join(u' '));
        firstCsv = firstCsv.isEmpty() ? csv : firstCsv;
    }
    EXPECT_EQ(Store(), before);
    // Into a module whose rows differ, rows are made from the texts alone.
    const QStringList last = Module(modules.last().toObject());
    const QByteArray lastCsv = Export(last, "last.csv");
    ASSERT_EQ(Import(first, lastCsv).status, 0);
    EXPECT_EQ(Export(first, "moved.csv"), lastCsv);

    // The grid's texts, with quotes where a description holds a comma.
    const QByteArray nv1108 = Export(kNv1108, "nv1108.csv");
    EXPECT_TRUE(
        nv1108.startsWith("Terminal,Show,Re-prompt,Break,Spacing,%%1PROMPT,%%2PROMPT,"
                          "TERM_,MFG,CAT,DESC,TAG,LINE1,LINE2,"));
    EXPECT_TRUE(nv1108.contains("\r\nDigital input,Always,Input address,0,,,,3,"));
}

TEST_F(TerminalsCommand, EachRefusedCellIsNamedByRowAndColumnAndTheStoreStaysAsItWas) {
    const QByteArray csv = Export(kNv1108, "nv1108.csv");
    const QList<QByteArray> lines = csv.split('\n');
    ASSERT_GE(lines.size(), 6);
    const auto edit = [&](int line, const QByteArray& from, const QByteArray& to) {
        QList<QByteArray> changed = lines;
        changed[line].replace(changed[line].indexOf(from), from.size(), to);
        return changed.join('\n');
    };
    const struct {
        const char* what;
        QByteArray csv;
        QStringList module;
        int status;
        const char* message;
    } cases[] = {
        {"unknown block", edit(2, "Digital input,", "Digital inputs,"), kNv1108, 1,
         "row 2, column Terminal: no block of the list has the description \"Digital inputs\""},
        {"show", edit(3, ",Always,", ",Sometimes,"), kNv1108, 1,
         "row 3, column Show: \"Sometimes\" is none of the choices"},
        {"spacing", edit(4, ",0,,", ",0,1.5 mm,"), kNv1108, 1,
         "row 4, column Spacing: \"1.5 mm\" is no spacing"},
        {"ragged", edit(5, "\r", ",x\r"), kNv1108, 1, "row 5: 30 cells where the header has 29"},
        {"quote", edit(5, "Digital", "\"Digital"), kNv1108, 1,
         "row 5, column Terminal: a quoted field is not closed"},
        {"header", edit(0, "Re-prompt", "Reprompt"), kNv1108, 1,
         "header, column 3: \"Reprompt\" where the column Re-prompt belongs"},
        {"module", csv, QStringList(kNv1108).replaceInStrings("NV-1108", "NV-9999"), 2,
         "no catalog NV-9999"},
    };
    const QString before = Store();
    for (const auto& c : cases) {
        const PlcdbRun run = Import(c.module, c.csv);
        EXPECT_EQ(run.status, c.status) << c.what;
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.message))) << qPrintable(run.err);
        EXPECT_EQ(Store(), before) << c.what;
    }
    EXPECT_EQ(Run({"terminals", "import", "--series", "NV-100", "in.csv"}).status, 2);
}
