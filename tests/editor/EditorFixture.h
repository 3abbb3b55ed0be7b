#pragma once

#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

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

    QTemporaryDir m_dir;
    ProgramTexts m_texts;
    std::unique_ptr<StandaloneHost> m_host;
    ZelPlcDbIO m_store;
    ScriptedMessages m_messages;
};
