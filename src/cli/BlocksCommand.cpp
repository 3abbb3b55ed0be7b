#include "BlocksCommand.h"

#include "BlockSettingsFolder.h"
#include "CBlockDescEx.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "HostBridge.h"
#include "HostSession.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>
#include <initializer_list>
#include <utility>

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

struct BlocksOptions {
    QString folder;
    QString find;
    bool finding = false;
    int mode = 1;
};

int Fail(const QString& text, int status) {
    return ReportFailure(QStringLiteral("blocks"), text, status);
}

bool ParseBlocksOptions(const QStringList& args, BlocksOptions& out, QString& error) {
    bool modeGiven = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (arg != QStringLiteral("--dir") && arg != QStringLiteral("--find") &&
            arg != QStringLiteral("--mode")) {
            error = QStringLiteral("unknown argument %1").arg(arg);
            return false;
        }
        if (i + 1 >= args.size()) {
            error = QStringLiteral("%1 needs a value").arg(arg);
            return false;
        }
        const QString& value = args[++i];
        if (arg == QStringLiteral("--dir")) {
            out.folder = value;
        } else if (arg == QStringLiteral("--find")) {
            out.find = value;
            out.finding = true;
        } else if (value == QStringLiteral("1") || value == QStringLiteral("2")) {
            out.mode = value.toInt();
            modeGiven = true;
        } else {
            error = QStringLiteral("--mode takes 1 (block name) or 2 (description)");
            return false;
        }
    }
    if (modeGiven && !out.finding) {
        error = QStringLiteral("--mode goes with --find");
        return false;
    }
    return true;
}

// One JSON value as compact text: the string escapes and the shortest number form of
// the JSON writer, so that the output's key order can be ours.
QString Json(const QJsonValue& value) {
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}

// "{"key":value,...}" with the keys in the order given; values are JSON texts already.
QString Object(std::initializer_list<std::pair<const char*, QString>> members) {
    QString text(u'{');
    for (const auto& [key, value] : members) {
        if (text.size() > 1) {
            text += u',';
        }
        text += u'"' + QLatin1String(key) + QStringLiteral("\":") + value;
    }
    return text + u'}';
}

QString AttributeJson(const _attrinfo& info) {
    return Object({{"tag", Json(info.strTag)},
                   {"prompt", Json(info.strPrompt)},
                   {"x", Json(info.dX)},
                   {"y", Json(info.dY)},
                   {"z", Json(info.dZ)},
                   {"height", Json(info.dHeight)},
                   {"rotation", Json(info.dRotation)},
                   {"widthFactor", Json(info.dWidthFactor)},
                   {"oblique", Json(info.dOblique)},
                   {"horizontalMode", Json(info.nHorzMode)},
                   {"verticalMode", Json(info.nVertMode)}});
}

QString BlockJson(int index, const _termblock& block) {
    QStringList attributes;
    for (const _attrinfo& info : block.lstAttribs) {
        attributes << AttributeJson(info);
    }
    return Object({{"index", Json(index)},
                   {"file", Json(block.strBlockFile)},
                   {"category", Json(block.strCategory)},
                   {"description", Json(block.strDescription)},
                   {"sample", Json(block.strSampleFile)},
                   {"attributes", u'[' + attributes.join(u',') + u']'}});
}

QString ListJson(const QString& folder, const TermBlockList& list) {
    QStringList blocks;
    for (qsizetype i = 0; i < list.size(); ++i) {
        blocks << BlockJson(int(i + 1), list[i]);
    }
    return Object({{"format", Json(QStringLiteral("plcdb-blocks"))},
                   {"version", Json(1)},
                   {"directory", Json(folder)},
                   {"blocks", u'[' + blocks.join(u',') + u']'}});
}

}  // namespace

int RunBlocksCommand(const CliOptions& options) {
    BlocksOptions blocks;
    QString error;
    if (!ParseBlocksOptions(options.arguments, blocks, error)) {
        return Fail(error, kUsage);
    }
    // The host answers the Lisp functions that find the settings folder and the drawings.
    HostSession session;
    if (!session.startHost(options, &error)) {
        return Fail(error, kFailed);
    }
    for (const char* name : {"kv_fio_does_file_exist", "kv_fio_does_file_exist_error",
                             "kv_fio_does_block_exist_disk", "zel_get_var"}) {
        DeclareLispFunction(QString::fromLatin1(name));
    }
    QString folder = blocks.folder.isEmpty()
                         ? BlockSettingsFolder::Find(false)
                         : QDir::toNativeSeparators(CliOptions::FullPath(blocks.folder));
    if (folder.isEmpty()) {
        return Fail(QStringLiteral("no %1 in the folder of GBL_kv_DocSetBase or on the support "
                                   "path; give its folder with --dir FOLDER")
                        .arg(QLatin1String(CTermBlockSettings::kFileName)),
                    kFailed);
    }
    const QString shown = blocks.folder.isEmpty() ? folder : blocks.folder;
    if (!QFileInfo(QDir(folder), QLatin1String(CTermBlockSettings::kFileName)).isFile()) {
        return Fail(QStringLiteral("the folder %1 has no %2")
                        .arg(shown, QLatin1String(CTermBlockSettings::kFileName)),
                    kFailed);
    }
    CTermBlockSettings settings;
    settings.SetDirectory(folder);
    TermBlockList list;
    if (!settings.Read(list)) {
        return Fail(QStringLiteral("cannot read %1 in %2 (it must be readable and writable)")
                        .arg(QLatin1String(CTermBlockSettings::kFileName), shown),
                    kFailed);
    }
    CBlockDescEx desc;
    desc.SetBlocks(list);
    const QString answer = blocks.finding
                               ? QString::number(desc.FindBlock(blocks.find, blocks.mode))
                               : ListJson(folder, list);
    std::fputs(answer.toUtf8().constData(), stdout);
    std::fputc('\n', stdout);
    return 0;
}
