#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <span>

class QIODevice;

// The entities a drawing file holds, in drawing units with the y axis up. Angles are
// in degrees, counter-clockwise; z coordinates are dropped.
struct DxfLine {
    QPointF start;
    QPointF end;
};

struct DxfArc {
    QPointF center;
    double radius = 0.0;
    double startAngle = 0.0;
    double endAngle = 0.0;
};

struct DxfCircle {
    QPointF center;
    double radius = 0.0;
};

// Both polyline forms; bulges are dropped, so arc segments come out straight.
struct DxfPolyline {
    QList<QPointF> points;
    bool closed = false;
};

// A single-line text (position on the baseline) or a paragraph text (position at its
// top left, lines separated by "\n", formatting codes removed).
struct DxfText {
    QPointF position;
    double height = 0.0;
    double rotation = 0.0;
    QString text;
    bool paragraph = false;
};

// Where an entity lies: model space, paper space, or inside some other block definition.
enum class DxfSpace { Model, Paper, None };

// An attribute definition: what a block asks for when it is inserted.
struct DxfAttributeDefinition {
    QString tag;
    QString prompt;
    QString defaultValue;
    QPointF position;
    double z = 0.0;
    double height = 0.0;
    double rotation = 0.0;
    double widthFactor = 1.0;
    double oblique = 0.0;
    int horizontalMode = 0;  // 0 left, 1 center, 2 right, 3 aligned, 4 middle, 5 fit
    int verticalMode = 0;    // 0 baseline, 1 bottom, 2 middle, 3 top
    int flags = 0;           // 1 invisible, 2 constant, 4 verify, 8 preset
    DxfSpace space = DxfSpace::Model;
};

// What the reader hands over, entity by entity, in file order. Each call has a default
// that ignores the entity, so a sink takes only what it needs.
class DxfSink {
public:
    virtual ~DxfSink() = default;
    virtual void line(const DxfLine& line) { Q_UNUSED(line); }
    virtual void arc(const DxfArc& arc) { Q_UNUSED(arc); }
    virtual void circle(const DxfCircle& circle) { Q_UNUSED(circle); }
    virtual void polyline(const DxfPolyline& polyline) { Q_UNUSED(polyline); }
    virtual void text(const DxfText& text) { Q_UNUSED(text); }
    virtual void attribute(const DxfAttributeDefinition& attribute) { Q_UNUSED(attribute); }
};

// All entities of a drawing, kind by kind.
struct DxfDrawing {
    QList<DxfLine> lines;
    QList<DxfArc> arcs;
    QList<DxfCircle> circles;
    QList<DxfPolyline> polylines;
    QList<DxfText> texts;
    QList<DxfAttributeDefinition> attributes;

    bool isEmpty() const;
    // The extent of all entities; texts count with an estimate of their width.
    QRectF bounds() const;
};

// Reads the text form of a drawing file: pairs of lines, a group code and its value,
// with "\r\n" or "\n" line ends. Entities come from the ENTITIES and BLOCKS sections;
// everything else is skipped. An entity of the ENTITIES section lies in paper space when
// its group 67 is 1, else in model space; one inside the block definition
// "*Model_Space" or "*Paper_Space" (any case) lies in that space, and one inside any
// other block definition in none. Text values are UTF-8, or Latin-1 where they are not
// valid UTF-8.
//
// A reader answers false with a reason for input that is empty, binary, not made of
// code and value pairs, or holds a number that is no number. Entities handed over
// before the fault stay handed over: a text that ends in the middle of an entity
// gives the entities before it and a reason naming the unfinished one.
class DxfReader {
public:
    static bool Read(QIODevice& input, DxfSink& sink, QString* error);
    static bool ReadText(const QByteArray& text, DxfDrawing& drawing, QString* error);
    static bool ReadFile(const QString& path, DxfDrawing& drawing, QString* error);
    static bool ReadFile(const QString& path, DxfSink& sink, QString* error);

    // A longer line (counted without its line end) is no line of a drawing file.
    static constexpr qint64 kMaxLineLength = 1 << 20;

private:
    struct Group {
        int code = 0;
        QByteArray value;
        qint64 line = 0;
    };
    // The groups of one entity. A reader keeps one record for all and reuses its
    // groups, values included, so that reading a group allocates nothing.
    struct Record {
        QByteArray type;
        qint64 line = 0;
        QList<Group> pool;
        qsizetype count = 0;
        std::span<const Group> groups() const { return {pool.constData(), size_t(count)}; }
        Group& next();  // the slot behind the groups, made when missing
    };
    enum class Next { Group, End, Failed };

    DxfReader(QIODevice& input, DxfSink& sink);
    bool run();
    bool readRecords(Group first);
    bool finishAtEnd(const Record& record);
    Next readGroup(Group& group);
    Next readPair(Group& group);
    Next readLine(QByteArrayView& line);
    bool atEnd();
    bool fillBuffer();
    bool fail(const QString& reason);
    bool failAt(qint64 line, const QString& reason);

    bool handle(const Record& record);
    bool handleEntity(const Record& record);
    void flushPolyline();
    bool takesEntities() const;
    void beginBlock(const Record& record);
    DxfSpace spaceOf(const Record& record) const;

    const Group* find(const Record& record, int code) const;
    bool real(const Record& record, int code, double& value);
    bool number(const Record& record, const Group& group, double& value);
    bool integer(const Record& record, int code, int& value);
    QString text(const Record& record, int code) const;

    bool readLineEntity(const Record& record);
    bool readArc(const Record& record);
    bool readCircle(const Record& record);
    bool readLightPolyline(const Record& record);
    bool readPolylineStart(const Record& record);
    bool readVertex(const Record& record);
    bool readText(const Record& record);
    bool readParagraph(const Record& record);
    bool readAttributeDefinition(const Record& record);

    QIODevice& m_input;
    DxfSink& m_sink;
    QByteArray m_buffer;  // read ahead of the lines handed out
    qsizetype m_position = 0;
    bool m_exhausted = false;  // a read gave nothing more
    qint64 m_lineNumber = 0;
    QString m_error;
    QByteArray m_section;                    // upper case; empty between sections
    DxfSpace m_blockSpace = DxfSpace::None;  // of the block definition being read
    bool m_inBlock = false;                  // between BLOCK and ENDBLK
    bool m_hasPolyline = false;
    DxfPolyline m_polyline;  // a POLYLINE waiting for its vertices and SEQEND
};
