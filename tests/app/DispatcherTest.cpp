#include "CMBApplet.h"
#include "CommandDispatcher.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"
#include "ZelUtils.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// A host that refuses one external name.
class RefusingHost : public StandaloneHost {
public:
    QString refused;
    int defun(const QString& name, int code) override {
        return name == refused ? kHostErrorResult : StandaloneHost::defun(name, code);
    }
};

// The list "zel_mbsel" gets from the Lisp side; place 4 is the style.
HostValue SelectionList() {
    HostValue list;
    list.begin().shortInt(0).string(QStringLiteral("C:/db")).nil().string(QStringLiteral("3"));
    list.string(QStringLiteral("v")).real(1.5).shortInt(1).string(QString()).shortInt(1).end();
    return list;
}

HostValue Replaced(std::size_t place, const HostCell& cell) {
    std::vector<HostCell> cells = SelectionList().cells();
    cells[place] = cell;
    return HostValue(cells);
}

SelectionArgs g_lastSelection;
bool g_editorAnswer = false;

}  // namespace

class DispatcherTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error());
        m_host.setReporter([this](const QString& text) { m_reports << text; });
        m_host.openDocument();
        SetCurrentHost(&m_host);
    }
    void TearDown() override {
        m_applet.unloadApplication();
        CommandDispatcher::SetSelectionRunner(nullptr);
        CommandDispatcher::SetEditorRunner(nullptr);
        CMBApplet::SetStoreFactory(nullptr);
        SetCurrentHost(nullptr);
    }
    void start() {
        ASSERT_EQ(m_applet.initApplication(), 0);
        ASSERT_EQ(m_applet.loadDocument(), 0);
    }

    ProgramTexts m_texts;
    RefusingHost m_host;
    CMBApplet m_applet;
    ScriptedMessages m_messages;
    QStringList m_reports;
};

TEST_F(DispatcherTest, DocumentLoadRegistersNamesAndDeclaresLispFunctions) {
    m_host.refused = QStringLiteral("c:ZLPLCDB");
    start();
    EXPECT_NE(ZelPlcDbIO::Instance(), nullptr);
    for (const char* name : {"zel_mbsel", "c:zel_plcedit", "c:ZLPLCMIGRATE", "zel_delay"}) {
        EXPECT_TRUE(m_host.isExternal(QString::fromLatin1(name))) << name;
    }
    EXPECT_FALSE(m_host.isExternal(QStringLiteral("c:ZLPLCDB")));
    for (const char* name : CMBApplet::kLispFunctions) {
        EXPECT_TRUE(m_host.isDeclared(QString::fromLatin1(name))) << name;
    }
    // A second document registers the names again.
    EXPECT_EQ(m_applet.loadDocument(), 0);
    EXPECT_EQ(m_host.callExternal(QStringLiteral("zel_delay"), HostValue().shortInt(1)).handled, 1);
}

TEST_F(DispatcherTest, AStoreThatCannotBeMadeEndsTheStart) {
    CMBApplet::SetStoreFactory([]() -> ZelPlcDbIO* { return nullptr; });
    EXPECT_EQ(m_applet.initApplication(), CMBApplet::kStartFailed);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 10111);
    EXPECT_EQ(ZelPlcDbIO::Instance(), nullptr);
}

TEST_F(DispatcherTest, SelectionArgumentsAreConverted) {
    SelectionArgs args;
    ASSERT_TRUE(CommandDispatcher::ParseSelectionArgs(SelectionList(), args));
    EXPECT_EQ(args.strPath, NativePath(QStringLiteral("C:/db")));
    EXPECT_FALSE(args.bSetupFlag);
    EXPECT_EQ(args.nStyle, 3);
    EXPECT_EQ(args.nOrientation, 2);
    EXPECT_DOUBLE_EQ(args.dScale, 1.5);
    EXPECT_TRUE(args.bExtraFlag);
    EXPECT_TRUE(args.bGroupB);

    // Nil path and flags, an orientation other than V, a style out of range.
    HostValue other(std::vector<HostCell>{
        HostCell::Marker(kHostListBegin), HostCell::Marker(kHostNil), HostCell::Marker(kHostNil),
        HostCell::Short(0), HostCell::String(QStringLiteral("12")),
        HostCell::String(QStringLiteral("H")), HostCell::Real(1.0), HostCell::Marker(kHostNil),
        HostCell::String(QString()), HostCell::Marker(kHostNil)});  // no list end
    ASSERT_TRUE(CommandDispatcher::ParseSelectionArgs(other, args));
    EXPECT_TRUE(args.strPath.isEmpty());
    EXPECT_TRUE(args.bSetupFlag);
    EXPECT_EQ(args.nStyle, 12);
    EXPECT_EQ(args.nOrientation, 1);
    EXPECT_FALSE(args.bExtraFlag);
    EXPECT_FALSE(args.bGroupB);
}

TEST_F(DispatcherTest, AnyBadCellRefusesTheSelection) {
    const HostCell wrong[10] = {
        HostCell::Short(0),    HostCell::String("x"), HostCell::Short(1),
        HostCell::String("x"), HostCell::Short(5),    HostCell::Marker(kHostNil),
        HostCell::Short(1),    HostCell::Real(1.0),   HostCell::Marker(kHostNil),
        HostCell::String("x"),
    };
    SelectionArgs args;
    for (std::size_t place = 0; place < 10; ++place) {
        EXPECT_FALSE(CommandDispatcher::ParseSelectionArgs(Replaced(place, wrong[place]), args))
            << "place " << place;
    }
    std::vector<HostCell> shortList = SelectionList().cells();
    shortList.resize(9);
    EXPECT_FALSE(CommandDispatcher::ParseSelectionArgs(HostValue(shortList), args));
    EXPECT_FALSE(CommandDispatcher::ParseSelectionArgs(HostValue(), args));
}

TEST_F(DispatcherTest, OnlyAGoodSelectionOpensTheDialogAndItsListIsTheAnswer) {
    start();
    static int opened = 0;
    opened = 0;
    CommandDispatcher::SetSelectionRunner([](const SelectionArgs& args, HostValue& result) {
        ++opened;
        g_lastSelection = args;
        result.begin().string(QStringLiteral("IO-16")).end();
        return true;
    });
    const auto refused =
        m_host.callExternal(QStringLiteral("zel_mbsel"), Replaced(4, HostCell::Short(5)));
    EXPECT_EQ(refused.handled, 1);
    EXPECT_EQ(refused.answer, StandaloneHost::Answer::Nil);
    EXPECT_EQ(opened, 0);
    EXPECT_TRUE(m_messages.shown.empty());

    const auto result = m_host.callExternal(QStringLiteral("ZEL_MBSEL"), SelectionList());
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(result.answer, StandaloneHost::Answer::List);
    EXPECT_EQ(result.value,
              HostValue().begin().begin().string(QStringLiteral("IO-16")).end().end());
    EXPECT_EQ(g_lastSelection.nStyle, 3);
}

TEST_F(DispatcherTest, DelayTakesAPositiveShortElseARandomDefault) {
    EXPECT_EQ(CommandDispatcher::DelayMilliseconds(HostValue().shortInt(1)), 1);
    EXPECT_EQ(CommandDispatcher::DelayMilliseconds(HostValue().shortInt(250)), 250);
    const HostValue defaults[] = {HostValue().shortInt(0), HostValue().shortInt(-5),
                                  HostValue().string(QStringLiteral("x")), HostValue().real(5.0),
                                  HostValue()};
    for (const HostValue& args : defaults) {
        for (int i = 0; i < 50; ++i) {
            const int ms = CommandDispatcher::DelayMilliseconds(args);
            EXPECT_GE(ms, 101);
            EXPECT_LE(ms, 200);
        }
    }
}

TEST_F(DispatcherTest, EditorAsksForTheInsertOnlyWhenItSaysSo) {
    start();
    CommandDispatcher::SetEditorRunner([] { return g_editorAnswer; });
    g_editorAnswer = false;
    m_host.callExternal(QStringLiteral("c:zel_plcedit"), HostValue());
    EXPECT_TRUE(m_host.sentCommands().isEmpty());
    g_editorAnswer = true;
    m_host.callExternal(QStringLiteral("c:ZLPLCDB"), HostValue());
    EXPECT_EQ(m_host.sentCommands(), QStringList({QStringLiteral("_.kv_inplc\n")}));
}

TEST_F(DispatcherTest, MigrationCommandAsksForAFileAndReturnsNothing) {
    start();
    const auto result = m_host.callExternal(QStringLiteral("c:ZLPLCMIGRATE"), HostValue());
    EXPECT_EQ(result.handled, 1);
    // No database on the search path: the Lisp side reports it, then the question is
    // asked with an empty default, which the headless host answers as cancelled.
    EXPECT_EQ(result.answer, StandaloneHost::Answer::Void);
    ASSERT_EQ(m_reports.size(), 1);
    EXPECT_TRUE(m_reports[0].contains(QStringLiteral("ZEL_PLC.MDB")));
}
