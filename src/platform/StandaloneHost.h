#pragma once

#include "HostServices.h"
#include "HostUi.h"
#include "StandaloneHostConfig.h"

#include <QMap>
#include <QSet>
#include <QStringList>

#include <functional>

// The host of the command line: it registers a plug-in's external functions, calls
// them as the family's Lisp side would, and answers the Lisp functions the plug-in
// calls back, configured by StandaloneHostConfig.
class StandaloneHost : public HostServices {
public:
    // A Lisp function of the host: false makes the call fail.
    using LispFunction = std::function<bool(const HostValue& args, HostValue& result)>;
    using Reporter = std::function<void(const QString& text)>;

    enum class Answer { None, Void, Nil, List };
    struct CallResult {
        bool known = false;  // the name was registered
        int handled = 0;     // what the registered function answered
        Answer answer = Answer::None;
        HostValue value;  // the list answered, with its list begin and end
    };

    explicit StandaloneHost(StandaloneHostConfig config = {});
    ~StandaloneHost() override;

    const StandaloneHostConfig& config() const { return m_config; }
    // Where the host writes the Lisp side's reports and its own notes (standard error).
    void setReporter(Reporter reporter) { m_reporter = std::move(reporter); }
    // The screen side of the host; null (the default) answers headless.
    void setUi(HostUi* ui) { m_ui = ui; }
    void defineLispFunction(const QString& name, LispFunction function);
    bool isDeclared(const QString& name) const;
    void openDocument() { m_hasDocument = true; }
    bool hasDocument() const { return m_hasDocument; }

    bool isExternal(const QString& name) const;
    QStringList externalNames() const { return m_names.values(); }
    CallResult callExternal(const QString& name, const HostValue& args);
    const QStringList& sentCommands() const { return m_sentCommands; }

    int defun(const QString& name, int code) override;
    int regFunc(HostFunction function, int code) override;
    int funCode() const override { return m_code; }
    HostValue args() const override { return m_args; }
    int retList(const HostValue& chain) override;
    int retNil() override;
    int retVoid() override;

    int invoke(const HostValue& call, HostValue* result) override;
    int findFile(const QString& name, QString& found) override;
    int getFileD(const QString& title, const QString& defaultPath, const QString& ext, int flags,
                 HostValue& result) override;
    int getFileNavDialog(const QString& title, const QString& defaultName, const QString& filter,
                         int flags, QString& chosen) override;
    void help(const QString& file, const QString& topic, int command) override;
    QString realToString(double value, int mode, int precision) override;
    HostScale hiDpi() const override { return m_ui ? m_ui->scale() : HostScale(); }
    int sendCommand(const QString& text, bool activate, bool wrapUpInactive, bool echo) override;
    QString programDir() const override { return m_config.programDir; }

private:
    void defineFamilyFunctions();
    int evaluate(const HostValue& args, HostValue* result);
    QString searchFolders(const QString& name, const QStringList& folders) const;
    // A support file: the database the host was given (a file, or a server's connection
    // text), else the support path.
    QString searchSupportPath(const QString& name) const;
    void report(const QString& text) const;

    StandaloneHostConfig m_config;
    Reporter m_reporter;
    HostUi* m_ui = nullptr;
    QMap<QString, int> m_codes;      // by lower-case external name
    QMap<QString, QString> m_names;  // lower-case name -> name as registered
    QMap<int, HostFunction> m_functions;
    QMap<QString, LispFunction> m_lisp;  // by lower-case name
    QSet<QString> m_declared;
    bool m_hasDocument = false;
    int m_code = -1;
    HostValue m_args;
    Answer m_answer = Answer::None;
    HostValue m_value;
    QStringList m_sentCommands;
};
