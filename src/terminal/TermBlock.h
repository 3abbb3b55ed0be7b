#pragma once

#include <QList>
#include <QString>

// One attribute definition of a terminal block, as its drawing file holds it.
struct _attrinfo {
    QString strTag;     // never empty
    QString strPrompt;  // the tag when the drawing has none
    double dX = 0, dY = 0, dZ = 0, dHeight = 0, dRotation = 0, dWidthFactor = 0, dOblique = 0;
    int nHorzMode = 0, nVertMode = 0;  // the host's justification codes
};

// One terminal block of the settings file, with the attributes of its drawing.
struct _termblock {
    QString strBlockFile, strCategory, strDescription, strSampleFile;
    QList<_attrinfo> lstAttribs;  // sorted by tag
};

using TermBlockList = QList<_termblock>;
