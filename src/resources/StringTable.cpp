// The string table of the resource library: every text the program shows, keyed by its
// message number. Format texts take %1, %2, ... in the order the caller passes its
// arguments. Choice lists hold one choice per line, separated by "\r\n", and the line
// position is the value the choice stands for, so their order must not change.

#include "Export.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

struct Entry {
    int id;
    const char16_t* text;
};

// clang-format off
constexpr Entry kTable[] = {
    // Blocks grid context menu: the texts of its commands, by command number.
    {207, u"Copy"},
    {210, u"Insert Row"},
    {214, u"Paste"},
    {215, u"Remove Row"},
    {216, u"Cut"},
    {217, u"Copy Row"},
    {218, u"Cut Row"},
    {219, u"Paste Row"},

    // Terminal grid context menu: the texts of its commands, by command number.
    {225, u"Edit Cells..."},
    {226, u"Insert Before"},
    {227, u"Insert After"},
    {228, u"Delete Rows"},

    // Module list of the selection dialogs: column headers and the type-without-row hint.
    {4000, u"Catalog"},
    {4001, u"Points"},
    {4002, u"Rating"},
    {4003, u"Remarks"},
    {4004, u"Description"},
    {4005, u"Select a module in the list first."},

    // Attribute grid: corner caption above the tags, caption of the value row.
    {4006, u"Attribute"},
    {4007, u"Value"},

    // Terminal block definitions grid: column headers.
    {4008, u"Block File"},
    {4009, u"Category"},
    {4010, u"Description"},
    {4011, u"Sample File"},

    // Database editor: the unsaved-changes question.
    {4012, u"The module has unsaved changes. Save them now?"},

    // Terminal grid: column headers and the choice lists of the show and re-prompt
    // columns; line n describes the flag set n (show: 1 exclude, 2 include; re-prompt:
    // 1 input address, 2 output address).
    {4013, u"Terminal"},
    {4014, u"Show"},
    {4015, u"Always\r\n"
           u"Exclude: layout A only\r\n"
           u"Include: layout B only\r\n"
           u"Include and exclude: always"},
    {4016, u"Re-prompt"},
    {4017, u"No address\r\n"
           u"Input address\r\n"
           u"Output address\r\n"
           u"Input and output address"},
    {4018, u"Break"},
    {4019, u"Spacing"},

    // Editor and selection dialogs: the type table of the selection.
    {4020, u"Table: %1"},

    // Module tree paste: the new catalog number asked when the name is taken.
    {4021, u"Paste Module"},
    {4022, u"Catalog number of the pasted module:"},

    // Module data dialogs: address base entries, in drop-down order. The
    // default file selects an entry by its beginning, so each starts with its keyword.
    {4023, u"Octal"},
    {4024, u"Decimal"},
    {4025, u"Hexadecimal"},
    {4026, u"None"},

    // Module tree: the root item.
    {4027, u"PLC Modules"},

    // Module data dialogs: direction entries (both bits, bit 1, bit 0) and the
    // text for neither bit, which is no entry of the list and so must differ from them.
    {4028, u"Input and Output"},
    {4029, u"Output"},
    {4030, u"Input"},
    {4031, u"Not set"},

    // Module search above the tree: the empty field's hint, the headers of the match
    // list that the catalog list lacks, and the list's line when nothing matches.
    {4032, u"Search catalog, description..."},
    {4033, u"Manufacturer"},
    {4034, u"Series"},
    {4035, u"Type"},
    {4036, u"No module matches."},

    // Editor: the module is another's, or no edit lock could be had; it opens read-only.
    {4037, u"%1 has had this module open for editing since %2.\nIt opens read-only here: "
           u"changes to it cannot be saved."},
    {4038, u"Modules cannot be locked for editing:\n%1\nThey open read-only: changes to "
           u"them cannot be saved."},
    {4039, u"%1 has had this module open for editing since %2: it cannot be renamed or "
           u"deleted now."},

    // Database access: title and failures.
    {5000, u"PLC Database"},
    {5003, u"The PLC database cannot be opened:\n%1"},
    {5004, u"The module could not be created in the database."},

    // Box dimension and style box dialogs: caption and the group checks.
    {5005, u"Box Dimensions"},
    {5006, u"The values of dimensions 1 to 4 are incomplete. Fill in values 1 to 4 of "
           u"this group, or leave the whole group empty."},
    {5007, u"A unit is given without a value. Enter the value or clear the unit."},

    // Block path list: the placeholders for the host's search path and the library path.
    {6000, u"<Support Path>"},
    {6001, u"<Library Path>"},

    // Terminal block definitions: caption of the file-not-found question.
    {10011, u"File Not Found"},

    // Module data dialog: window title.
    {10029, u"Edit Module Data"},

    // File dialogs: drawing filters (block files and the module's drawing files).
    {10032, u"Drawing files (*.SHT *.sht)"},
    {10033, u"Drawing files (*.SHT *.sht);;All files (*)"},

    // Terminal picker: caption above the block list, with the category.
    {10039, u"Terminal blocks of category \"%1\":"},

    // Terminal block definitions: bitmap filter, show and check messages with captions.
    {10041, u"Bitmap files (*.BMP *.bmp)"},
    {10042, u"Row %1 has no block file to show."},
    {10043, u"Row %1 has no sample file to show."},
    {10044, u"Nothing to Show"},
    {10045, u"Terminal Block Sample"},
    {10046, u"Terminal Block Preview"},
    {10047, u"The file \"%1\" in row %2 cannot be found.\nKeep it anyway?"},
    {10048, u"The description \"%1\" in row %2 is already used by an earlier row. Each "
            u"terminal block needs a description of its own."},
    {10049, u"Duplicate Description"},
    {10050, u"Row %1 has a category or a description but no block file."},
    {10051, u"Row %1 has a block file but no category."},
    {10052, u"Row %1 has a block file and a category but no description."},
    {10053, u"Incomplete Row"},
    // Terminal block definitions: a list that can't be written, and the dialog's title.
    {10054, u"The terminal block list cannot be written in the folder \"%1\". The dialog "
            u"stays open with your changes; check that the folder can be written to and press "
            u"OK again, or Cancel to give them up."},
    {10055, u"Terminal Block Definitions"},

    // Terminal grid: a module row whose block is not in the block list.
    {10058, u"A terminal of this module uses a block that is not in the terminal block "
            u"list, so its terminals cannot be shown. Add the block to the terminal block "
            u"definitions first."},
    {10059, u"Unknown Terminal Block"},

    // Start-up failure of the database engine.
    {10111, u"The PLC database engine could not be started. The PLC database application "
            u"is unloaded."},

    // Module tree: refused names (with the old name), delete questions, paste conflict.
    {10112, u"Cannot rename the manufacturer \"%1\": another manufacturer already has that "
            u"name.\nReopen the database editor to make further changes in the tree."},
    {10113, u"Cannot rename the series \"%1\": this manufacturer already has a series of "
            u"that name."},
    {10114, u"Cannot rename the type \"%1\": this series already has a type of that "
            u"name.\nReopen the database editor to make further changes in the tree."},
    {10115, u"Cannot rename the module \"%1\": this type already has a module with that "
            u"catalog number."},
    {10116, u"Cannot rename the module: the table of its type was not found in the "
            u"database."},
    {10117, u"The catalog number \"%1\" already exists in this type."},
    {10118, u"Delete the manufacturer \"%1\" with all its series, types and modules?"},
    {10119, u"Delete the series \"%1\" of manufacturer \"%2\" with all its types and "
            u"modules?"},
    {10120, u"Delete the type \"%1\" of series \"%2\", manufacturer \"%3\", with all its "
            u"modules?"},
    {10121, u"Delete the module \"%1\"?"},

    // Box dimension and style box dialogs: the number check.
    {10122, u"Invalid Number"},
    {10123, u"This value is not a valid number. Use only the digits 0 to 9 and the "
            u"decimal separator."},

    // Database migration command: file dialog title and the database file's extension.
    {10124, u"Select the PLC Database to Migrate"},
    {10125, u"MDB"},

    // The family's task dialog "ZelPLCDatabase.AdditionalFieldRequired", as a question.
    {10126, u"This PLC database was made by an older version and lacks fields that the "
            u"module dialogs need.\nUpgrade the database now? A backup copy of the file is "
            u"kept beside it."},
};
// clang-format on

constexpr bool IsStrictlySorted() {
    for (std::size_t i = 1; i < std::size(kTable); ++i) {
        if (kTable[i - 1].id >= kTable[i].id) {
            return false;
        }
    }
    return true;
}

static_assert(IsStrictlySorted(), "the string table must be sorted by number, without doubles");

}  // namespace

extern "C" PLCDB_EXPORT const char16_t* zel_mbres_string(int id) {
    const auto* end = std::end(kTable);
    const auto* found = std::lower_bound(
        std::begin(kTable), end, id, [](const Entry& entry, int key) { return entry.id < key; });
    return (found != end && found->id == id) ? found->text : nullptr;
}
