#include "CGetStringDlg.h"
#include "CModuleTree.h"
#include "DialogControls.h"
#include "EditorWindowFixture.h"
#include "MenuChooser.h"
#include "ModalRunner.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

const QString kInputs = QStringLiteral("Digital Input");
const QString kOutputs = QStringLiteral("Digital Output");

}  // namespace

class CModuleTreeTest : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        m_tree = std::make_unique<CModuleTree>();
        m_tree->SetEditMode(true);
        m_tree->resize(400, 600);
        m_tree->show();
        ASSERT_EQ(m_tree->FillTree(), CModuleTree::kFilled);
    }
    void TearDown() override {
        m_tree.reset();
        EditorFixture::TearDown();
    }
    QTreeWidgetItem* root() { return m_tree->topLevelItem(0); }
    QTreeWidgetItem* type(const QString& name) {
        return Child(Child(Child(root(), kNorvale), kSeries), name);
    }
    // Types text key by key over the label of the running edit and ends it with key.
    void typeLabel(const QString& text, Qt::Key key = Qt::Key_Return) {
        auto* editor = m_tree->findChild<QLineEdit*>();
        ASSERT_NE(editor, nullptr);
        editor->selectAll();
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, key);
        QCoreApplication::processEvents();
        // Closed editors go later; the next edit must not find this one.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // Right-clicks item and clicks the menu entry once the menu shows.
    void contextCommand(QTreeWidgetItem* item, const QString& entry) {
        m_tree->scrollToItem(item);
        const QPoint pos = m_tree->visualItemRect(item).center();
        EXPECT_TRUE(ChooseMenuEntry(entry,
                                    [&] {
                                        QContextMenuEvent event(
                                            QContextMenuEvent::Mouse, pos,
                                            m_tree->viewport()->mapToGlobal(pos));
                                        QCoreApplication::sendEvent(m_tree->viewport(), &event);
                                    }))
            << qPrintable(entry) << " on " << qPrintable(item->text(0));
    }
    bool storeHasType(const QString& series, const QString& name) {
        CKVModuleDB db;
        return db.Open(databasePath()) && db.IndexExists(kNorvale, series, name);
    }
    bool storeHasModule(const QString& typeName, const QString& catalog) {
        return stored(typeName, catalog).has_value();
    }

    std::unique_ptr<CModuleTree> m_tree;
};

TEST_F(CModuleTreeTest, LevelsComeFromTheIndexAndCatalogsWhenATypeIsSelected) {
    EXPECT_EQ(CModuleTree::ItemData(root()), CModuleTree::kRootData);
    EXPECT_EQ(root()->text(0), LoadResString(4027));
    QTreeWidgetItem* inputs = type(kInputs);
    ASSERT_NE(inputs, nullptr);
    EXPECT_EQ(CModuleTree::ItemData(inputs), CModuleTree::kTypeData);
    EXPECT_EQ(inputs->childCount(), 0);
    m_tree->setCurrentItem(inputs);
    ASSERT_EQ(inputs->childCount(), 3);
    EXPECT_EQ(inputs->child(0)->text(0), QStringLiteral("NV-1108"));
    EXPECT_EQ(CModuleTree::ItemData(inputs->child(0)), CModuleTree::kCatalogData);

    QString m, s, t;
    EXPECT_TRUE(m_tree->GetItemPath(m, s, t, inputs->child(1)));
    EXPECT_EQ(QStringList({m, s, t}), QStringList({kNorvale, kSeries, kInputs}));
    EXPECT_FALSE(m_tree->GetItemPath(m, s, t, inputs->parent()));
    EXPECT_TRUE(m_tree->GetItemPath(m, s, t, inputs->parent(), true));
    EXPECT_TRUE(t.isEmpty());
    EXPECT_NE(m_tree->FindItem("norvale controls", "nv-100", "digital output", "nv-1232"), nullptr);
}

TEST_F(CModuleTreeTest, RenamesChangeTheStoreAndRefusalsBehaveAsTold) {
    QTreeWidgetItem* outputs = type(kOutputs);
    m_tree->SetContextItem(outputs);
    m_tree->OnRename();
    typeLabel(QStringLiteral("Relay Output"));
    EXPECT_EQ(outputs->text(0), QStringLiteral("Relay Output"));
    EXPECT_TRUE(storeHasType(kSeries, QStringLiteral("Relay Output")));
    EXPECT_FALSE(storeHasType(kSeries, kOutputs));

    // Only the case changes: refused in silence.
    m_tree->OnRename();
    typeLabel(QStringLiteral("RELAY OUTPUT"));
    EXPECT_EQ(outputs->text(0), QStringLiteral("Relay Output"));
    EXPECT_TRUE(m_messages.shown.empty());

    // A series that exists: message 10113, and the tree keeps working.
    QTreeWidgetItem* series = outputs->parent();
    m_tree->SetContextItem(Child(series->parent(), QStringLiteral("NV-500")));
    m_tree->OnRename();
    typeLabel(kSeries);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 10113);
    EXPECT_TRUE(m_tree->Database().IsOpen());

    // A type that exists: message 10114, and the tree's store is closed from then on.
    m_tree->SetContextItem(outputs);
    m_tree->OnRename();
    typeLabel(kInputs);
    ASSERT_EQ(m_messages.shown.size(), 2u);
    EXPECT_EQ(m_messages.shown[1].number, 10114);
    EXPECT_FALSE(m_tree->Database().IsOpen());
    EXPECT_FALSE(m_tree->ExpandType(type(QStringLiteral("Analog Input"))));
}

TEST_F(CModuleTreeTest, NewNamesReachTheStoreOnlyWhenTheEditEndsWithOne) {
    QTreeWidgetItem* series = type(kInputs)->parent();
    m_tree->SetContextItem(series);
    m_tree->OnNew();
    typeLabel(QString(), Qt::Key_Escape);
    EXPECT_EQ(series->childCount(), 3);  // the unnamed item is gone

    m_tree->OnNew();
    typeLabel(QStringLiteral("  Safety Input  "));
    EXPECT_EQ(series->childCount(), 4);
    EXPECT_EQ(series->child(3)->text(0), QStringLiteral("Safety Input"));
    EXPECT_TRUE(storeHasType(kSeries, QStringLiteral("Safety Input")));

    m_tree->SetContextItem(root());
    m_tree->OnNew();
    typeLabel(QStringLiteral("Zephyr Logic"));
    CKVModuleDB db;
    ASSERT_TRUE(db.Open(databasePath()));
    EXPECT_TRUE(db.IndexExists(QStringLiteral("Zephyr Logic"), QString(), QString()));
}

TEST_F(CModuleTreeTest, DeleteAsksAndRemovesTheLevelFromTheStore) {
    QTreeWidgetItem* outputs = type(kOutputs);
    int deletingSignals = 0;
    QObject::connect(m_tree.get(), &CModuleTree::selectionDeleting,
                     [&deletingSignals] { ++deletingSignals; });
    m_tree->setCurrentItem(outputs);
    m_tree->setCurrentItem(outputs->child(0));
    m_tree->SetContextItem(outputs);
    m_messages.answers = {kIdNo};
    m_tree->OnDelete();
    EXPECT_TRUE(storeHasType(kSeries, kOutputs));
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 10120);
    EXPECT_TRUE(m_messages.shown[0].text.contains(kOutputs));

    m_messages.answers = {kIdYes};
    m_tree->OnDelete();
    EXPECT_FALSE(storeHasType(kSeries, kOutputs));
    EXPECT_EQ(type(kOutputs), nullptr);
    EXPECT_EQ(deletingSignals, 1);
}

TEST_F(CModuleTreeTest, ACutStaysWhenItsNameIsTakenAndTheUserCancelsAndMovesElsewhere) {
    m_tree->pasteApproval = [](bool) { return 1; };
    QTreeWidgetItem* inputs = type(kInputs);
    m_tree->setCurrentItem(inputs);
    m_tree->SetContextItem(Child(inputs, QStringLiteral("NV-1108")));
    m_tree->OnCut();

    // Pasted where the name exists, then Cancel at the question for another: nothing moves.
    QueuedModalScript script;
    script.pushAnswer(kIdCancel);
    m_tree->SetContextItem(inputs);
    m_tree->OnPaste();
    EXPECT_TRUE(script.done());
    EXPECT_TRUE(storeHasModule(kInputs, QStringLiteral("NV-1108")));

    // Pasted into another type it moves.
    QTreeWidgetItem* outputs = type(kOutputs);
    m_tree->setCurrentItem(outputs);
    m_tree->SetContextItem(outputs);
    m_tree->OnPaste();
    EXPECT_TRUE(storeHasModule(kOutputs, QStringLiteral("NV-1108")));
    EXPECT_FALSE(storeHasModule(kInputs, QStringLiteral("NV-1108")));
    EXPECT_EQ(Child(inputs, QStringLiteral("NV-1108")), nullptr);
    EXPECT_EQ(m_tree->currentItem()->text(0), QStringLiteral("NV-1108"));
}

TEST_F(CModuleTreeTest, APasteGoesOnOnlyWhenTheOwnerAnswersOne) {
    // Regression: a paste went on with no owner to ask, and on any answer but 0.
    QTreeWidgetItem* inputs = type(kInputs);
    m_tree->setCurrentItem(inputs);
    contextCommand(Child(inputs, QStringLiteral("NV-1108")), QStringLiteral("Copy"));
    QTreeWidgetItem* outputs = type(kOutputs);
    m_tree->setCurrentItem(outputs);

    QueuedModalScript noDialogs;  // a wrong paste would ask for a name: cancelled, counted
    QStringList asked;
    const auto owner = [&asked](int answer) {
        return [&asked, answer](bool cut) {
            asked << QStringLiteral("%1 cut=%2").arg(answer).arg(cut);
            return answer;
        };
    };
    m_tree->pasteApproval = nullptr;
    contextCommand(outputs, QStringLiteral("Paste"));
    for (int answer : {0, 2, -1}) {
        m_tree->pasteApproval = owner(answer);
        contextCommand(outputs, QStringLiteral("Paste"));
    }
    EXPECT_EQ(asked, QStringList({"0 cut=0", "2 cut=0", "-1 cut=0"}));
    EXPECT_EQ(noDialogs.unexpected, 0);
    EXPECT_FALSE(storeHasModule(kOutputs, QStringLiteral("NV-1108")));
    EXPECT_EQ(Child(outputs, QStringLiteral("NV-1108")), nullptr);

    m_tree->pasteApproval = owner(1);
    contextCommand(outputs, QStringLiteral("Paste"));
    EXPECT_TRUE(storeHasModule(kOutputs, QStringLiteral("NV-1108")));
    EXPECT_NE(Child(outputs, QStringLiteral("NV-1108")), nullptr);
}

TEST_F(CModuleTreeTest, APasteAsksAgainWhileTheNameGivenIsTakenToo) {
    m_tree->pasteApproval = [](bool) { return 1; };
    QTreeWidgetItem* inputs = type(kInputs);
    m_tree->setCurrentItem(inputs);
    contextCommand(Child(inputs, QStringLiteral("NV-1108")), QStringLiteral("Copy"));

    QStringList offered;
    QueuedModalScript script;
    for (const char* name : {"NV-1116", "NV-1108-C"}) {
        script.push([&offered, name](QDialog& dialog) {
            auto* edit = FindControl<QLineEdit>(&dialog, CGetStringDlg::kIdValue);
            offered << edit->text();
            edit->selectAll();
            QTest::keyClicks(edit, QString::fromLatin1(name));
            QTest::mouseClick(FindControl<QPushButton>(&dialog, CGetStringDlg::kIdOk),
                              Qt::LeftButton);
            return 0;
        });
    }
    contextCommand(inputs, QStringLiteral("Paste"));
    EXPECT_TRUE(script.done());
    EXPECT_EQ(offered, QStringList({"NV-1108", "NV-1116"}));
    ASSERT_EQ(m_messages.shown.size(), 2u);
    EXPECT_EQ(m_messages.shown[0].number, 10117);
    EXPECT_TRUE(m_messages.shown[0].text.contains(QStringLiteral("NV-1108")));
    EXPECT_EQ(m_messages.shown[1].number, 10117);
    EXPECT_TRUE(m_messages.shown[1].text.contains(QStringLiteral("NV-1116")));
    EXPECT_TRUE(storeHasModule(kInputs, QStringLiteral("NV-1108-C")));
    EXPECT_TRUE(storeHasModule(kInputs, QStringLiteral("NV-1108")));
    EXPECT_NE(Child(inputs, QStringLiteral("NV-1108-C")), nullptr);
    EXPECT_EQ(inputs->childCount(), 4);
}

TEST_F(CModuleTreeTest, LabelsOfManufacturersAndSeriesTake24CharactersAndTypes60) {
    const QString typed =
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+-*/");
    QTreeWidgetItem* norvale = Child(root(), kNorvale);
    const struct {
        QTreeWidgetItem* item;
        QString kept;
    } cases[] = {
        {Child(root(), QStringLiteral("Brightwater Industrial")),
         QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX")},
        {Child(norvale, QStringLiteral("NV-500")), QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX")},
        {type(QStringLiteral("Analog Input")),
         QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz01234567")},
    };
    for (const auto& c : cases) {
        ASSERT_NE(c.item, nullptr);
        contextCommand(c.item, QStringLiteral("Rename"));
        typeLabel(typed);
        EXPECT_EQ(c.item->text(0), c.kept);
    }
    CKVModuleDB db;
    ASSERT_TRUE(db.Open(databasePath()));
    EXPECT_TRUE(db.IndexExists(cases[0].kept, QString(), QString()));
    EXPECT_TRUE(db.IndexExists(kNorvale, cases[1].kept, QString()));
    EXPECT_TRUE(db.IndexExists(kNorvale, kSeries, cases[2].kept));
}
