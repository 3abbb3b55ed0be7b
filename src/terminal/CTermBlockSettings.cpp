#include "CTermBlockSettings.h"

#include "DxfReader.h"
#include "HostBridge.h"
#include "ZelUtils.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>

namespace {

constexpr int kFieldCount = 4;

// The attribute definitions of a drawing's model and paper space, each in file order.
class SpaceAttributes : public DxfSink {
public:
    void attribute(const DxfAttributeDefinition& definition) override {
        if (definition.tag.isEmpty() || definition.space == DxfSpace::None) {
            return;
        }
        _attrinfo info;
        info.strTag = definition.tag;
        info.strPrompt = definition.prompt.isEmpty() ? definition.tag : definition.prompt;
        info.dX = definition.position.x();
        info.dY = definition.position.y();
        info.dZ = definition.z;
        info.dHeight = definition.height;
        info.dRotation = definition.rotation;
        info.dWidthFactor = definition.widthFactor;
        info.dOblique = definition.oblique;
        info.nHorzMode = definition.horizontalMode;
        info.nVertMode = definition.verticalMode;
        (definition.space == DxfSpace::Model ? model : paper).append(info);
    }

    QList<_attrinfo> model;
    QList<_attrinfo> paper;
};

// The text behind the ":" cut at ";" and line feed into at most four fields; the last
// field runs to the end of the text.
QStringList SplitFields(QString text) {
    QStringList fields;
    QString field;
    while (fields.size() < kFieldCount) {
        if (!GetToken(text, field, QStringLiteral(";\n"))) {
            fields.append(text);
            break;
        }
        fields.append(field);
    }
    return fields;
}

}  // namespace

CTermBlockSettings::CTermBlockSettings() = default;

CTermBlockSettings::~CTermBlockSettings() = default;

void CTermBlockSettings::SetDirectory(const QString& directory) {
    if (!directory.isNull()) {
        m_strDirectory = directory;
    }
}

QString CTermBlockSettings::GetFilePath() const {
    if (m_strDirectory.isEmpty()) {
        return QString();
    }
    QString path = m_strDirectory;
    EnsureEndingBackslash(path);
    return NativePath(path + QLatin1String(kFileName));
}

bool CTermBlockSettings::Open(int nMode, const QString& directory) {
    if (!directory.isEmpty()) {
        m_strDirectory = directory;
    }
    if (m_strDirectory.isEmpty()) {
        return false;
    }
    // Read and write access even for reading, so a write-protected file fails to open.
    unsigned flags =
        ZelStdioFileEx::modeReadWrite | ZelStdioFileEx::shareDenyWrite | ZelStdioFileEx::typeText;
    if (nMode == 2) {
        flags |= ZelStdioFileEx::modeCreate;
    }
    if (!m_file.Open(GetFilePath(), flags)) {
        return false;
    }
    m_nOpenMode = nMode;
    return true;
}

bool CTermBlockSettings::Close() {
    m_file.Close();
    m_nOpenMode = 0;
    return true;
}

bool CTermBlockSettings::Read(TermBlockList& list) {
    if (!Open(1)) {
        return false;
    }
    list.clear();
    // The working block keeps its attributes from line to line: a block whose drawing
    // can't be read takes over those of the block before it.
    _termblock block;
    QString line;
    while (m_file.ReadString(line)) {
        if (!line.startsWith(u':')) {
            continue;
        }
        const QStringList fields = SplitFields(line.mid(1));
        block.strBlockFile = fields.value(0);
        block.strCategory = fields.value(1);
        block.strDescription = fields.value(2);
        block.strSampleFile = fields.value(3);
        if (block.strBlockFile.isEmpty() || block.strCategory.isEmpty() ||
            block.strDescription.isEmpty()) {
            continue;
        }
        LoadBlockAttribs(block.strBlockFile, block.lstAttribs);
        list.append(block);
    }
    Close();
    return true;
}

bool CTermBlockSettings::Write(const TermBlockList& list) {
    if (!Open(2)) {
        return false;
    }
    for (const _termblock& block : list) {
        const QString file = block.strBlockFile.trimmed();
        const QString category = block.strCategory.trimmed();
        const QString description = block.strDescription.trimmed();
        if (file.isEmpty() || category.isEmpty() || description.isEmpty()) {
            continue;
        }
        m_file.WriteString(u':' + file + u';' + category + u';' + description + u';' +
                           block.strSampleFile.trimmed() + u'\n');
    }
    // A full disk must not pass for a saved list.
    const bool written = m_file.Flush();
    Close();
    return written;
}

bool CTermBlockSettings::LoadBlockAttribs(QString strFile, QList<_attrinfo>& attribs) const {
    EnsureExtension(strFile, QStringLiteral("SHT"));
    QString path;
    if (!FindBlockFile(strFile, path, false)) {
        return false;
    }
    SpaceAttributes found;
    if (!DxfReader::ReadFile(path, found, nullptr)) {
        return false;
    }
    attribs = found.model + found.paper;
    SortAttribs(attribs);
    return true;
}

void CTermBlockSettings::SortAttribs(QList<_attrinfo>& attribs) {
    if (attribs.size() < 2) {
        return;
    }
    QCollator collator{QLocale()};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(attribs.begin(), attribs.end(),
                     [&collator](const _attrinfo& a, const _attrinfo& b) {
                         return collator.compare(a.strTag, b.strTag) < 0;
                     });
}

void CTermBlockSettings::GetCategories(const TermBlockList& list, QStringList& categories) {
    categories.clear();
    for (const _termblock& block : list) {
        if (!categories.contains(block.strCategory, Qt::CaseSensitive)) {
            categories.append(block.strCategory);
        }
    }
}
