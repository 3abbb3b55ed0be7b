#pragma once

#include "BlockDefsTable.h"
#include "CDib.h"
#include "HelpDialog.h"

class CBlocksGrid;
class QButtonGroup;
class QLabel;
class QPushButton;
class QRadioButton;

// The list of terminal blocks that modules may use, one block a row: the user browses
// for drawings and sample pictures, looks at them, sets the drawing style and
// orientation of all rows at once and takes block names over from a module of the
// store. OK checks the rows and writes "kvmbblks.bsf". The rules live in
// BlockDefsTable; the dialog shows the table and forwards to it.
class CTermBlockDefsDlg : public HelpDialog {
    Q_OBJECT

public:
    enum Control {
        kIdOk = 1,
        kIdCancel = 2,
        kIdHelp = 203,
        kIdBrowse = 1006,
        kIdGrid = 1038,
        kIdShowBlock = 1063,
        kIdShowSample = 1064,
        kIdAddFromModule = 1066,
        kIdStyleFirst = 1117,
        kIdStyleLast = 1125,
        kIdPicture = 1126,
        kIdVertical = 1131,
        kIdHorizontal = 1132,
    };

    explicit CTermBlockDefsDlg(QWidget* parent = nullptr);
    ~CTermBlockDefsDlg() override;

    // The folder of both settings files; set before the dialog runs. A null text does
    // nothing.
    void SetDirectory(const QString& folder);

    // Start-up: reads the files and takes style and orientation from the first row.
    bool OnInitDialog();
    // OK: checks the rows (a failing cell becomes current and the dialog stays), then
    // writes them. A file that can't be written is reported and the dialog stays, so
    // that nothing typed is lost.
    void accept() override;

    // The style of the first checked style button, 1 when none is.
    int CurrentStyle() const;
    BlockDefsTable::Orientation CurrentOrientation() const;
    void OnStyleRadio(int index);
    void OnOrientation(BlockDefsTable::Orientation orientation);
    void OnBrowse();
    // Shows the drawing (bBlock) or the sample picture of the current row.
    void ShowCell(bool bBlock);
    void OnAddFromModule();

    CBlocksGrid& Grid() { return *m_grid; }
    const BlockDefsTable& Table() const { return m_table; }
    const CDib& Picture() const { return m_picture; }
    const QString& PictureFile() const { return m_strPictureFile; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void BuildControls();
    // Shows the picture of style and orientation; with bRewrite also renames the blocks
    // and samples of every row to them. A style outside 1 to 9 changes nothing.
    void ApplyStyle(int style, BlockDefsTable::Orientation orientation, bool bRewrite);
    void OnCellDoubleClicked(int row, int col);

    BlockDefsTable m_table;
    int m_nStyleRadio = 0;
    CDib m_picture;
    QString m_strPictureFile;
    bool m_bInited = false;

    CBlocksGrid* m_grid;
    QPushButton* m_btnBrowse;
    QButtonGroup* m_styles;
    QRadioButton* m_radVertical;
    QRadioButton* m_radHorizontal;
    QLabel* m_stcPicture;
};
