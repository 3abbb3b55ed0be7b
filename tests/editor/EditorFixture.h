#pragma once

#include "CKVModule.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

// A copy of the sample database in a temporary folder that is the host's search path and
// program folder, the resource library's texts, the process store and scripted message
// answers.
class EditorFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    QString databasePath() const { return m_dir.filePath(QStringLiteral("ZEL_PLC.MDB")); }
    // A new host with this many decimals for the numbers it formats.
    void startHost(int precision);
    // A new host whose search path finds no database.
    void startHostWithoutDatabase();
    // A module of the NV-100 series as a store of its own reads it from the copy, or
    // from another database; none when it is not there.
    std::optional<CKVModule> stored(const QString& type, const QString& catalog,
                                    const QString& database = QString()) const;
    // A file in the folder that is no database; its path.
    QString writeJunk() const;

    static inline const QString kNorvale = QStringLiteral("Norvale Controls");
    static inline const QString kSeries = QStringLiteral("NV-100");

    QTemporaryDir m_dir;
    ProgramTexts m_texts;
    std::unique_ptr<StandaloneHost> m_host;
    ZelPlcDbIO m_store;
    ScriptedMessages m_messages;
};
