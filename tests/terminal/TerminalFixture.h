#pragma once

#include "StandaloneHost.h"
#include "TermBlock.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

// A temporary settings folder and a block folder that the host's "GBL_kv_lib" names,
// with the family functions the block list calls declared.
class TerminalFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    QString settingsFolder() const;
    QString settingsPath() const;
    void writeSettings(const QByteArray& text) const;
    QByteArray readSettings() const;
    // A drawing in the block folder.
    void writeDrawing(const QString& name, const QByteArray& text) const;

    QTemporaryDir m_dir;
    std::unique_ptr<StandaloneHost> m_host;
};

// A drawing text with these entities in its ENTITIES section and these block
// definitions (whole BLOCK ... ENDBLK texts) in its BLOCKS section.
QByteArray Drawing(const QByteArray& entities, const QByteArray& blocks = QByteArray());
// An attribute definition entity; paper puts it in paper space.
QByteArray AttDef(const char* tag, const char* prompt, double x, double y, bool paper = false);
// A block definition holding these entities.
QByteArray BlockDef(const char* name, const QByteArray& entities);

// "TAG" of each attribute, in list order.
QStringList Tags(const QList<_attrinfo>& attribs);
