#include "PickerFixture.h"

#include "CPickTerm.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "ModalRunner.h"
#include "ViewInput.h"

#include <QListWidget>
#include <QSettings>

namespace {

_termblock Block(const char* file, const char* category, const char* description,
                 const char* sample) {
    _termblock block;
    block.strBlockFile = QString::fromLatin1(file);
    block.strCategory = QString::fromLatin1(category);
    block.strDescription = QString::fromLatin1(description);
    block.strSampleFile = QString::fromLatin1(sample);
    return block;
}

void SavePicture(const QString& path, int width, int height, Qt::GlobalColor colour) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    ASSERT_TRUE(image.save(path, "BMP"));
}

QSettings UserSettings() {
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("plcdb"),
                     QStringLiteral("plcdb"));
}

}  // namespace

void PickerFixture::SetUp() {
    ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error());
    SavePicture(m_dir.filePath(QStringLiteral("wide.bmp")), 40, 20, Qt::red);
    SavePicture(m_dir.filePath(QStringLiteral("tall.bmp")), 24, 36, Qt::blue);
    StandaloneHostConfig config;
    config.supportPath = {m_dir.path()};
    m_host = std::make_unique<StandaloneHost>(config);
    m_host->setReporter([this](const QString& text) { m_reports.append(text); });
    m_host->openDocument();
    SetCurrentHost(m_host.get());
    DeclareLispFunction(QStringLiteral("kv_fio_does_file_exist"));
    m_blocks.SetBlocks({
        Block("HP1TERM", "Terminals", "Terminal", "wide.bmp"),
        Block("HP1FUSE", "Terminals", "Fuse", "tall"),
        Block("HP1GND", "Terminals", "Ground", "missing.bmp"),
        Block("HP1PWR", "Power", "Supply", ""),
        Block("HP1RLY", "Power", "Relay", ""),
        Block("HP1TWA", "Pairs", "Twin", ""),
        Block("HP1TWB", "Pairs", "Twin", ""),
        Block("HP1SP1", "Spares", "Spare 1", ""),
        Block("HP1SP2", "Spares", "Spare 2", ""),
        Block("HP1SP3", "Spares", "Spare 3", ""),
        Block("HP1SP4", "Spares", "Spare 4", ""),
    });
    ClearRecent();
}

void PickerFixture::TearDown() {
    ClearRecent();
    SetCurrentHost(nullptr);
}

QStringList StoredRecent() {
    QSettings settings = UserSettings();
    settings.beginGroup(QStringLiteral("Settings/TermEditDlgControls"));
    QStringList recent;
    const int count = settings.value(QStringLiteral("RecentTermCount"), 0).toInt();
    for (int i = 1; i <= count; ++i) {
        recent.append(settings.value(QStringLiteral("Recent Terminal%1").arg(i)).toString());
    }
    return recent;
}

void ClearRecent() {
    QSettings settings = UserSettings();
    settings.remove(QStringLiteral("Settings/TermEditDlgControls"));
}

void PickerFixture::clickCategory(QDialog& picker, const QString& category) {
    auto* categories = FindControl<QListWidget>(&picker, CPickTerm::kIdCategories);
    const QList<QListWidgetItem*> found = categories->findItems(category, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << qPrintable(category);
    ClickItem(*categories, categories->row(found.first()));
}

int PickerFixture::pickBlock(CPickTerm& picker, const QString& category, int row) {
    QueuedModalScript script;
    script.push([&](QDialog& d) {
        clickCategory(d, category);
        ClickItem(*FindControl<QListWidget>(&d, CPickTerm::kIdBlocks), row);
        return int(kIdOk);
    });
    return ModalRunner::Run(picker);
}
