#include "CommandDispatcher.h"

#include "CrtNumbers.h"
#include "HostServices.h"
#include "Messages.h"
#include "MigrationCommand.h"
#include "ResourceLibrary.h"
#include "ZelUtils.h"

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

CommandDispatcher::SelectionRunner g_selection = nullptr;
CommandDispatcher::EditorRunner g_editor = nullptr;

// The cell at place index when its type is one of the accepted ones.
const HostCell* Accepted(const HostValue& args, std::size_t index,
                         std::initializer_list<short> types) {
    const HostCell* cell = args.at(index);
    if (!cell) {
        return nullptr;
    }
    for (short type : types) {
        if (cell->type == type) {
            return cell;
        }
    }
    return nullptr;
}

}  // namespace

void CommandDispatcher::SetSelectionRunner(SelectionRunner runner) {
    g_selection = runner;
}
void CommandDispatcher::SetEditorRunner(EditorRunner runner) {
    g_editor = runner;
}

int CommandDispatcher::Dispatch() {
    ResourceScope resources(LoadedResources());
    const int code = HostGetFunCode();
    const HostValue args = HostGetArgs();
    switch (code) {
        case kCodeSelectModule:
            if (!RunSelection(args)) {
                HostRetNil();
            }
            return 1;
        case kCodeEditor:
        case kCodeEditorDb:
            RunEditor();
            return 1;
        case kCodeMigrate:
            if (RunMigrationCommand()) {
                HostRetVoid();
            } else {
                HostRetNil();
            }
            return 1;
        case kCodeDelay:
            RunDelay(args);
            return 1;
        default:
            return 0;
    }
}

bool CommandDispatcher::ParseSelectionArgs(const HostValue& args, SelectionArgs& out) {
    const HostCell* cells[10] = {
        Accepted(args, 0, {kHostListBegin}),
        Accepted(args, 1, {kHostShort, kHostNil}),
        Accepted(args, 2, {kHostString, kHostNil}),
        Accepted(args, 3, {kHostShort, kHostNil}),
        Accepted(args, 4, {kHostString}),
        Accepted(args, 5, {kHostString}),
        Accepted(args, 6, {kHostReal}),
        Accepted(args, 7, {kHostShort, kHostNil}),
        Accepted(args, 8, {kHostString}),
        Accepted(args, 9, {kHostShort, kHostNil}),
    };
    for (const HostCell* cell : cells) {
        if (!cell) {
            return false;
        }
    }
    SelectionArgs parsed;
    parsed.strPath = cells[2]->type == kHostString ? NativePath(cells[2]->text) : QString();
    parsed.bSetupFlag = cells[3]->type == kHostShort;
    parsed.nStyle = crt::wtoi(cells[4]->text);
    parsed.nOrientation =
        cells[5]->text.compare(QStringLiteral("V"), Qt::CaseInsensitive) == 0 ? 2 : 1;
    parsed.dScale = cells[6]->real;
    parsed.bExtraFlag = cells[7]->type == kHostShort;
    parsed.bGroupB = cells[9]->type == kHostShort;
    out = parsed;
    return true;
}

int CommandDispatcher::DelayMilliseconds(const HostValue& args) {
    int milliseconds = std::rand() % 100 + 101;
    const HostCell* first = args.at(0);
    if (first && first->type == kHostShort && first->integer > 0) {
        milliseconds = first->integer;
    }
    return milliseconds;
}

bool CommandDispatcher::RunSelection(const HostValue& args) {
    SelectionArgs parsed;
    if (!ParseSelectionArgs(args, parsed)) {
        return false;
    }
    if (!g_selection) {
        Messages::ShowText(
            QStringLiteral("The module selection dialog is not part of this build."));
        return false;
    }
    HostValue result;
    if (!g_selection(parsed, result)) {
        return false;
    }
    HostRetList(result);
    return true;
}

void CommandDispatcher::RunEditor() {
    if (!g_editor) {
        Messages::ShowText(QStringLiteral("The database editor is not part of this build."));
        return;
    }
    if (g_editor()) {
        HostSendCommand(QStringLiteral("_.kv_inplc\n"), true, false, true);
    }
}

void CommandDispatcher::RunDelay(const HostValue& args) {
    const auto until =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(DelayMilliseconds(args));
    std::this_thread::sleep_until(until);
}
