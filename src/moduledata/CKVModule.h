#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// One terminal row: the text part and the special part, a ";"-separated token list.
struct _termvalues {
    QString strText;
    QString strSpecial;
};

// One PLC I/O module in memory: its spec, twelve box values, nine prompts
// and its terminal rows. Rows are addressed from 1; a row outside 1 .. count is a
// no-op answering false, -1 or a null text, except for the setters, which also take
// count + 1 and then add a row.
class CKVModule {
public:
    static constexpr int kPromptCount = 9;

    CKVModule();
    CKVModule(const CKVModule& other);
    CKVModule& operator=(const CKVModule& other);
    virtual ~CKVModule();

    // Frees the rows, empties every text but the direction flags and the table name,
    // unsets the box values and leaves nine empty prompts.
    void Clear(bool bMarkNew);

    // Spec texts.
    const QString& GetCatalog() const { return m_strCatalog; }
    void SetCatalog(const QString& text) { m_strCatalog = text; }
    const QString& GetManufacturer() const { return m_strManufacturer; }
    void SetManufacturer(const QString& text) { m_strManufacturer = text; }
    const QString& GetDescription() const { return m_strDescription; }
    void SetDescription(const QString& text) { m_strDescription = text; }
    const QString& GetColText1() const { return m_strColText1; }
    void SetColText1(const QString& text) { m_strColText1 = text; }
    const QString& GetColText2() const { return m_strColText2; }
    void SetColText2(const QString& text) { m_strColText2 = text; }
    const QString& GetColText3() const { return m_strColText3; }
    void SetColText3(const QString& text) { m_strColText3 = text; }
    const QString& GetSpecNote() const { return m_strSpecNote; }
    void SetSpecNote(const QString& text) { m_strSpecNote = text; }
    const QString& GetSpecTail() const { return m_strSpecTail; }
    void SetSpecTail(const QString& text) { m_strSpecTail = text; }
    const QString& GetDirFlags() const { return m_strDirFlags; }
    void SetDirFlags(const QString& text) { m_strDirFlags = text; }
    const QString& GetAddrBase() const { return m_strAddrBase; }
    void SetAddrBase(const QString& text) { m_strAddrBase = text; }
    const QString& GetTableName() const { return m_strTableName; }
    void SetTableName(const QString& text) { m_strTableName = text; }
    const QString& GetSpare() const { return m_strSpare; }
    void SetSpare(const QString& text) { m_strSpare = text; }
    bool GetIsNew() const { return m_bIsNew; }
    void SetIsNew(bool bIsNew) { m_bIsNew = bIsNew; }

    // Box values: group A (false) or B (true), place 1 to 6; -1.0 is unset.
    double GetBox(bool bGroupB, int place) const;
    void SetBox(bool bGroupB, int place, double value);
    const QString& GetUnit(bool bGroupB, int place) const;
    void SetUnit(bool bGroupB, int place, const QString& unit);

    double GetBoxA1() const { return GetBox(false, 1); }
    double GetBoxA2() const { return GetBox(false, 2); }
    double GetBoxA3() const { return GetBox(false, 3); }
    double GetBoxA4() const { return GetBox(false, 4); }
    double GetBoxA5() const { return GetBox(false, 5); }
    double GetBoxA6() const { return GetBox(false, 6); }
    double GetBoxB1() const { return GetBox(true, 1); }
    double GetBoxB2() const { return GetBox(true, 2); }
    double GetBoxB3() const { return GetBox(true, 3); }
    double GetBoxB4() const { return GetBox(true, 4); }
    double GetBoxB5() const { return GetBox(true, 5); }
    double GetBoxB6() const { return GetBox(true, 6); }
    void SetBoxA1(double value) { SetBox(false, 1, value); }
    void SetBoxA2(double value) { SetBox(false, 2, value); }
    void SetBoxA3(double value) { SetBox(false, 3, value); }
    void SetBoxA4(double value) { SetBox(false, 4, value); }
    void SetBoxA5(double value) { SetBox(false, 5, value); }
    void SetBoxA6(double value) { SetBox(false, 6, value); }
    void SetBoxB1(double value) { SetBox(true, 1, value); }
    void SetBoxB2(double value) { SetBox(true, 2, value); }
    void SetBoxB3(double value) { SetBox(true, 3, value); }
    void SetBoxB4(double value) { SetBox(true, 4, value); }
    void SetBoxB5(double value) { SetBox(true, 5, value); }
    void SetBoxB6(double value) { SetBox(true, 6, value); }

    const QString& GetUnitA1() const { return GetUnit(false, 1); }
    const QString& GetUnitA2() const { return GetUnit(false, 2); }
    const QString& GetUnitA3() const { return GetUnit(false, 3); }
    const QString& GetUnitA4() const { return GetUnit(false, 4); }
    const QString& GetUnitA5() const { return GetUnit(false, 5); }
    const QString& GetUnitA6() const { return GetUnit(false, 6); }
    const QString& GetUnitB1() const { return GetUnit(true, 1); }
    const QString& GetUnitB2() const { return GetUnit(true, 2); }
    const QString& GetUnitB3() const { return GetUnit(true, 3); }
    const QString& GetUnitB4() const { return GetUnit(true, 4); }
    const QString& GetUnitB5() const { return GetUnit(true, 5); }
    const QString& GetUnitB6() const { return GetUnit(true, 6); }
    void SetUnitA1(const QString& unit) { SetUnit(false, 1, unit); }
    void SetUnitA2(const QString& unit) { SetUnit(false, 2, unit); }
    void SetUnitA3(const QString& unit) { SetUnit(false, 3, unit); }
    void SetUnitA4(const QString& unit) { SetUnit(false, 4, unit); }
    void SetUnitA5(const QString& unit) { SetUnit(false, 5, unit); }
    void SetUnitA6(const QString& unit) { SetUnit(false, 6, unit); }
    void SetUnitB1(const QString& unit) { SetUnit(true, 1, unit); }
    void SetUnitB2(const QString& unit) { SetUnit(true, 2, unit); }
    void SetUnitB3(const QString& unit) { SetUnit(true, 3, unit); }
    void SetUnitB4(const QString& unit) { SetUnit(true, 4, unit); }
    void SetUnitB5(const QString& unit) { SetUnit(true, 5, unit); }
    void SetUnitB6(const QString& unit) { SetUnit(true, 6, unit); }

    // Prompts 1 to 9; an empty entry is a prompt not in use.
    void GetPrompts(QStringList& prompts) const { prompts = m_aPrompts; }
    void SetPrompts(const QStringList& prompts) { m_aPrompts = prompts; }
    const QStringList& Prompts() const { return m_aPrompts; }

    // Terminal rows.
    int GetTermCount() const { return int(m_aTermValues.size()); }
    QString GetTermText(int row) const;     // null outside 1 .. count
    QString GetTermSpecial(int row) const;  // null outside 1 .. count
    void SetTermText(int row, const QString& text);
    void SetTermSpecial(int row, const QString& text);
    bool RemoveTerm(int row);
    bool InsertTermCopy(int row, bool bFromSameRow);

    // The terminal row grammar: flags, spacing, attribute pairs and prompts.
    void SetTermRow(int row, const QString& joined);  // "text;special"
    int GetBreak(int row) const;
    int GetIncludeExclude(int row) const;  // 2 include, 1 exclude, OR-ed; -1 outside
    int GetAddrFlags(int row) const;       // 1 input, 2 output, OR-ed; -1 outside
    double GetSpacingFactor(int row) const;
    bool GetAttrValue(const QString& name, QString& value, int row) const;
    void SetBreak(int row, bool bBreak);
    void SetIncludeExclude(int row, int flags);
    void SetAddrFlags(int row, int flags);
    void SetSpacingFactor(int row, double value);
    // pairs: name, value, name, value ...; consumed.
    void MergeAttrValues(QStringList& pairs, int row);
    static bool NextAttrPair(QString& text, QString& name, QString& value);
    bool ParsePromptsToArray();
    bool RewritePrompts(const QStringList& prompts, int row);
    void ApplyPrompts();

    // The two normal forms of a row token, and the number (1 to 9) of a prompt token
    // in pair form, 0 for any other token.
    static QString FlagForm(const QString& token);
    static QString PairForm(const QString& token);
    static int PromptNumber(const QString& form);
    // The tokens of a special part as every operation above scans them.
    static QStringList Tokens(const QString& special);
    // Whether a token is read by the flag readers or the spacing reader, whatever else it
    // holds: such a token is what the break, show, re-prompt and spacing values are made of.
    static bool IsFlagToken(const QString& token);
    // The text of a prompt token, behind "%%nPROMPT=".
    static constexpr int kPromptTextStart = 10;

    // The text form of a style box value: a number and an optional unit, one blank
    // between them.
    static bool SplitValueUnit(const QString& text, QString& value, QString& unit);
    static bool BuildValueWithUnit(const QString& value, const QString& unit, QString& out);

private:
    void CopySpecification(const CKVModule& other);
    _termvalues* Row(int row);
    const _termvalues* Row(int row) const;
    // The row, or a new empty one when row is count + 1; null otherwise.
    _termvalues* RowOrAppend(int row);
    // Prompt number 1 to 9; the list grows when it was set shorter.
    void SetPrompt(int number, const QString& text);

    QStringList m_aPrompts;
    bool m_bIsNew = true;
    QList<_termvalues> m_aTermValues;
    QString m_strSpecTail;
    QString m_strDirFlags;
    QString m_aUnits[2][6];  // group A, B; places 1 to 6
    double m_aBoxes[2][6];   // group A, B; places 1 to 6
    QString m_strAddrBase;
    QString m_strSpecNote;
    QString m_strDescription;
    QString m_strColText3;
    QString m_strColText2;
    QString m_strColText1;
    QString m_strManufacturer;
    QString m_strCatalog;
    QString m_strSpare;
    QString m_strTableName;
};
