#pragma once

// What a terminal-row change tells the attribute grid.
struct _rowchange {
    int nPrevRow = -1;
    int nNewRow = -1;
    bool bSave = false;
};
