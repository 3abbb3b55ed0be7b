#pragma once

#include "BoxTextOrder.h"
#include "CKVModuleDB.h"
#include "ModuleDefaults.h"

#include <QList>
#include <QString>
#include <QStringList>

class CKVModule;

// The fields and rules of the module data form that the new-module dialog and the
// module-data dialog share, without widgets: defaults, the choice lists, the text
// rules, the OK rule, the address base and direction mappings, the making of a new
// module in the store and the transfer to and from a loaded module.
class ModuleSpecForm {
public:
    static constexpr int kMaxNameChars = 24, kMaxTypeChars = 60, kMaxCatalogChars = 60;
    static constexpr unsigned kMinTermCount = 1, kMaxTermCount = 10000;

    QString m_strManufacturer;
    QString m_strSeries;
    QString m_strType;
    QString m_strCatalog;
    QString m_strDescription;
    QString m_strColText1;
    QString m_strColText2;
    QString m_strColText3;
    QString m_strSpecNote;
    QString m_strSpecTail;
    unsigned m_nTermCount = 8;
    // Entry of the address base list: 0 octal, 1 decimal, 2 hexadecimal, 3 none; -1 is
    // no entry chosen.
    int m_nAddrBaseIndex = 3;
    // The direction bits as decimal text: bit 0 input, bit 1 output.
    QString m_strDirFlags;
    QStringList m_aPrompts;
    // The 24 box texts in BoxTextOrder, with "." as the decimal separator.
    QStringList m_aBoxText = QStringList(BoxTextOrder::kTextCount, QString());
    int m_nInfoNumber = 0;
    QList<_manfams> m_lstHierarchy;

    static QList<int> AddrBaseMessages();    // 4023, 4024, 4025, 4026
    static QList<int> DirectionMessages();   // 4028, 4029, 4030
    static QString AddrBaseText(int index);  // "Octal","Decimal","Hexadecimal", else ""
    // The entry of a stored address base text, by keyword and ignoring case; current for
    // a text that fits no keyword.
    static int AddrBaseIndexFromText(const QString& text, int current);
    // The flags after choosing the direction text (compared, ignoring case, with the
    // texts of 4028-4030); bits above 0 and 1 of flags (read with wtol) are kept.
    static QString DirFlagsForChoice(const QString& choiceText, const QString& flags);
    static int DirectionMessageOf(const QString& flags);  // 4028/4029/4030/4031
    static QString TrimmedLeft(const QString& text);
    static QString TrimmedRight(const QString& text);
    static bool CutToChars(QString& text, int maxChars);  // true when it cut
    // The OK rule over the five texts.
    static bool IsComplete(const QString& manufacturer, const QString& series, const QString& type,
                           const QString& catalog, const QString& termCountText);

    void ApplyInfoDefaults(const ModuleInfoDefaults& defaults);
    void ReadHierarchy(const QString& dbPath);  // silent on failure
    QStringList Manufacturers() const;
    QStringList SeriesOf(const QString& manufacturer) const;  // first match, no case
    QStringList StoreTypesOf(const QString& manufacturer, const QString& series) const;
    // The new module's type list: the kept list behaviour of RefillTypes steps 2-3:
    // default types the list lacks (no case), then the store's types inserted at 0,1,..
    QStringList TypeChoices(const QString& manufacturer, const QString& series,
                            const QStringList& defaultTypes) const;
    QString NewTermRowText(int row) const;  // row 1 long form, others short

    enum class Outcome { Created, StoreNotOpen, NeedsMigration, CatalogExists, Failed };
    // OK steps 2-10 of the new module on the database at dbPath (m_strDirFlags already
    // recomputed by the caller). NeedsMigration: nothing made, the caller asks.
    Outcome CreateModule(const QString& dbPath);

    // The module-data dialog: FillFromModule (RealToText 4 decimals, -1 -> empty,
    // address base by keywords, m_aPrompts from the module) and its OK.
    void FillFromModule(const CKVModule& module);
    void ApplyToModule(CKVModule& module, bool bPromptsChanged) const;

private:
    const _manfams* FindManufacturer(const QString& manufacturer) const;
    QString BoxText(int index) const;
    // The fields of the form written into a module, as both OKs do; an empty value text
    // sets emptyValue when given, else leaves the module's value.
    void WriteBoxes(CKVModule& module, const double* emptyValue) const;
    Outcome FillNewModule(CKVModuleDB& db, int handle) const;
};
