#include "DxfReader.h"

#include <QBuffer>
#include <QFile>
#include <QStringDecoder>
#include <QtMath>

#include <cmath>
#include <cstring>

namespace {

// Collects what a reader hands over into a drawing.
class DrawingCollector : public DxfSink {
public:
    explicit DrawingCollector(DxfDrawing& drawing) : m_drawing(drawing) {}
    void line(const DxfLine& line) override { m_drawing.lines.append(line); }
    void arc(const DxfArc& arc) override { m_drawing.arcs.append(arc); }
    void circle(const DxfCircle& circle) override { m_drawing.circles.append(circle); }
    void polyline(const DxfPolyline& polyline) override { m_drawing.polylines.append(polyline); }
    void text(const DxfText& text) override { m_drawing.texts.append(text); }
    void attribute(const DxfAttributeDefinition& attribute) override {
        m_drawing.attributes.append(attribute);
    }

private:
    DxfDrawing& m_drawing;
};

// The group that starts an embedded object: what follows it repeats codes of the
// entity itself and is not read.
constexpr int kEmbeddedObject = 101;

// Larger numbers are no coordinates of a real drawing and would overflow its extent.
constexpr double kMaxMagnitude = 1e20;

QString DecodeBytes(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

// "\U+00E9" stands for one character in text values of older files.
QString DecodeUnicodeEscapes(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringView rest = QStringView(text).mid(i);
        if (rest.startsWith(QLatin1String("\\U+"), Qt::CaseInsensitive) && rest.size() >= 7) {
            bool ok = false;
            const uint code = rest.mid(3, 4).toUInt(&ok, 16);
            if (ok) {
                out += QChar(char16_t(code));
                i += 6;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

// "%%d", "%%p" and "%%c" are the degree, plus-minus and diameter signs; "%%u" and
// "%%o" switch under- and overlining, which a preview does not show.
QString DecodeControlCodes(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!QStringView(text).mid(i).startsWith(QLatin1String("%%")) || i + 2 >= text.size()) {
            out += text[i];
            continue;
        }
        const QChar code = text[i + 2].toLower();
        if (code == u'd') {
            out += QChar(0x00B0);
        } else if (code == u'p') {
            out += QChar(0x00B1);
        } else if (code == u'c') {
            out += QChar(0x2300);
        } else if (code == u'%') {
            out += u'%';
        } else if (code != u'u' && code != u'o') {
            out += text.mid(i, 3);
        }
        i += 2;
    }
    return out;
}

QString DecodeValue(const QByteArray& bytes) {
    // Most values hold neither escapes nor control codes: no second and third pass.
    if (!bytes.contains('\\') && !bytes.contains('%')) {
        return DecodeBytes(bytes);
    }
    return DecodeControlCodes(DecodeUnicodeEscapes(DecodeBytes(bytes)));
}

// Index of the ';' that ends a formatting code starting at from, or -1.
qsizetype CodeEnd(const QString& text, qsizetype from) {
    return text.indexOf(u';', from);
}

// Removes the formatting codes of a paragraph text: "\P" is a line break, "{...}"
// groups, "\S1^2;" a stacked fraction, "\H2.5x;" and its kin change the look.
QString StripParagraphCodes(const QString& text) {
    static const QString kWithArgument = QStringLiteral("ACcFfHQTWp");
    static const QString kSwitches = QStringLiteral("LlOoKkN");
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'{' || c == u'}') {
            continue;
        }
        if (c != u'\\' || i + 1 >= text.size()) {
            out += c;
            continue;
        }
        const QChar code = text[++i];
        if (code == u'P') {
            out += u'\n';
        } else if (code == u'~') {
            out += u' ';
        } else if (code == u'S' || kWithArgument.contains(code)) {
            const qsizetype end = CodeEnd(text, i + 1);
            if (code == u'S' && end > i) {
                QString stacked = text.mid(i + 1, end - i - 1);
                out += stacked.replace(u'^', u'/').replace(u'#', u'/');
            }
            i = end < 0 ? i : end;
        } else if (!kSwitches.contains(code)) {
            out += code;  // "\\", "\{" and "\}" stand for themselves
        }
    }
    return out;
}

void Include(QRectF& box, const QPointF& point) {
    box.setLeft(qMin(box.left(), point.x()));
    box.setRight(qMax(box.right(), point.x()));
    box.setTop(qMin(box.top(), point.y()));
    box.setBottom(qMax(box.bottom(), point.y()));
}

QPointF Polar(const QPointF& center, double radius, double degrees) {
    const double radians = qDegreesToRadians(degrees);
    return center + QPointF(radius * std::cos(radians), radius * std::sin(radians));
}

double Normalized(double degrees) {
    const double angle = std::fmod(degrees, 360.0);
    return angle < 0.0 ? angle + 360.0 : angle;
}

// The end points of an arc and each quarter point its sweep passes.
QList<QPointF> ArcExtremes(const DxfArc& arc) {
    const double start = Normalized(arc.startAngle);
    const double sweep = Normalized(arc.endAngle - arc.startAngle);
    const double end = start + (sweep > 0.0 ? sweep : 360.0);
    QList<QPointF> points{Polar(arc.center, arc.radius, start), Polar(arc.center, arc.radius, end)};
    for (double quarter = std::ceil(start / 90.0) * 90.0; quarter < end; quarter += 90.0) {
        points.append(Polar(arc.center, arc.radius, quarter));
    }
    return points;
}

// A text's corners, taking its width as 0.6 of the height per character.
QList<QPointF> TextCorners(const QPointF& position, double height, double rotation,
                           const QString& text, bool paragraph) {
    const QStringList lines = text.split(u'\n');
    qsizetype longest = 0;
    for (const QString& line : lines) {
        longest = qMax(longest, line.size());
    }
    const double width = longest * height * 0.6;
    const double down = paragraph ? -height * lines.size() : height;
    const double radians = qDegreesToRadians(rotation);
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    QList<QPointF> corners;
    for (const QPointF& local :
         {QPointF(0, 0), QPointF(width, 0), QPointF(0, down), QPointF(width, down)}) {
        corners.append(position +
                       QPointF(local.x() * c - local.y() * s, local.x() * s + local.y() * c));
    }
    return corners;
}

}  // namespace

bool DxfDrawing::isEmpty() const {
    return lines.isEmpty() && arcs.isEmpty() && circles.isEmpty() && polylines.isEmpty() &&
           texts.isEmpty() && attributes.isEmpty();
}

QRectF DxfDrawing::bounds() const {
    QList<QPointF> points;
    for (const DxfLine& line : lines) {
        points << line.start << line.end;
    }
    for (const DxfArc& arc : arcs) {
        points << ArcExtremes(arc);
    }
    for (const DxfCircle& circle : circles) {
        const QPointF corner(circle.radius, circle.radius);
        points << circle.center - corner << circle.center + corner;
    }
    for (const DxfPolyline& polyline : polylines) {
        points << polyline.points;
    }
    for (const DxfText& text : texts) {
        points << TextCorners(text.position, text.height, text.rotation, text.text, text.paragraph);
    }
    for (const DxfAttributeDefinition& attribute : attributes) {
        points << TextCorners(attribute.position, attribute.height, attribute.rotation,
                              attribute.tag, false);
    }
    if (points.isEmpty()) {
        return QRectF();
    }
    QRectF box(points.first(), QSizeF());
    for (const QPointF& point : points) {
        Include(box, point);
    }
    return box;
}

DxfReader::DxfReader(QIODevice& input, DxfSink& sink) : m_input(input), m_sink(sink) {}

bool DxfReader::Read(QIODevice& input, DxfSink& sink, QString* error) {
    DxfReader reader(input, sink);
    const bool read = reader.run();
    if (error) {
        *error = read ? QString() : reader.m_error;
    }
    return read;
}

bool DxfReader::ReadText(const QByteArray& text, DxfDrawing& drawing, QString* error) {
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    DrawingCollector collector(drawing);
    return Read(buffer, collector, error);
}

bool DxfReader::ReadFile(const QString& path, DxfDrawing& drawing, QString* error) {
    DrawingCollector collector(drawing);
    return ReadFile(path, collector, error);
}

bool DxfReader::ReadFile(const QString& path, DxfSink& sink, QString* error) {
    QFile file(path);
    // The reader keeps a buffer of its own.
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        if (error) {
            *error = QStringLiteral("cannot open the drawing %1: %2").arg(path, file.errorString());
        }
        return false;
    }
    const bool read = Read(file, sink, error);
    if (!read && error) {
        *error = QStringLiteral("%1: %2").arg(path, *error);
    }
    return read;
}

bool DxfReader::run() {
    Group first;
    const Next next = readGroup(first);
    if (next == Next::End) {
        return fail(QStringLiteral("the drawing is empty"));
    }
    if (next == Next::Failed) {
        return false;
    }
    if (first.code != 0) {
        return failAt(first.line,
                      QStringLiteral("a drawing starts with group code 0, not %1").arg(first.code));
    }
    return readRecords(first);
}

bool DxfReader::readRecords(Group first) {
    QByteArray type = first.value;
    qint64 line = first.line;
    Record record;
    while (true) {
        record.type = type.trimmed().toUpper();
        record.line = line;
        record.count = 0;
        Next next;
        while ((next = readGroup(record.next())) == Next::Group) {
            const Group& read = record.next();
            if (read.code == 0) {
                type = read.value;
                line = read.line;
                break;
            }
            ++record.count;
        }
        if (next == Next::Failed) {
            return false;
        }
        if (next == Next::End) {
            return finishAtEnd(record);
        }
        if (record.type == "EOF") {
            flushPolyline();
            return true;
        }
        if (!handle(record)) {
            return false;
        }
    }
}

// The text ended after this record with no EOF: complete when no section is open.
bool DxfReader::finishAtEnd(const Record& record) {
    if (record.type == "EOF" || (record.type == "ENDSEC" && !m_section.isEmpty())) {
        flushPolyline();
        return true;
    }
    if (takesEntities() && record.type != "ENDSEC" && record.type != "SECTION") {
        return failAt(record.line,
                      QStringLiteral("the drawing ends in the middle of a %1 entity; the "
                                     "entities before it were read")
                          .arg(QString::fromLatin1(record.type)));
    }
    return fail(QStringLiteral("the drawing ends without EOF"));
}

DxfReader::Group& DxfReader::Record::next() {
    if (count == pool.size()) {
        pool.emplace_back();
    }
    return pool[count];
}

DxfReader::Next DxfReader::readGroup(Group& group) {
    do {
        const Next next = readPair(group);
        if (next != Next::Group) {
            return next;
        }
    } while (group.code == 999);  // a comment
    return Next::Group;
}

DxfReader::Next DxfReader::readPair(Group& group) {
    QByteArrayView code;
    Next next = readLine(code);
    if (next != Next::Group) {
        return next;
    }
    // Taken before atEnd, which may move the buffer under the view.
    bool ok = false;
    group.code = code.trimmed().toInt(&ok);
    group.line = m_lineNumber;
    const bool blank = code.trimmed().isEmpty();
    const QByteArray shown =
        ok ? QByteArray() : code.first(qMin(code.size(), qsizetype(40))).toByteArray();
    if (blank && atEnd()) {
        return Next::End;  // a blank last line is no group
    }
    if (!ok) {
        fail(QStringLiteral("group code expected, found \"%1\"").arg(DecodeBytes(shown)));
        return Next::Failed;
    }
    QByteArrayView value;
    next = readLine(value);
    if (next == Next::End) {
        fail(QStringLiteral("group code %1 has no value; the entities before it were read")
                 .arg(group.code));
        return Next::Failed;
    }
    // Into the room the slot has from earlier entities.
    group.value.resize(value.size());
    if (!value.isEmpty()) {
        std::memcpy(group.value.data(), value.data(), size_t(value.size()));
    }
    return next;
}

bool DxfReader::atEnd() {
    if (m_position >= m_buffer.size() && !m_exhausted) {
        fillBuffer();
    }
    return m_position >= m_buffer.size();
}

// Appends the next chunk of the input to what is left of the buffer; a read that gives
// nothing marks the end of the input. False when the input fails.
bool DxfReader::fillBuffer() {
    constexpr qint64 kChunk = qint64(64) * 1024;
    m_buffer.remove(0, m_position);
    m_position = 0;
    const qsizetype kept = m_buffer.size();
    m_buffer.resize(kept + kChunk);
    const qint64 size = m_input.read(m_buffer.data() + kept, kChunk);
    m_buffer.resize(kept + qMax(size, qint64(0)));
    m_exhausted = size <= 0;
    if (size < 0) {
        return fail(QStringLiteral("the drawing cannot be read: %1").arg(m_input.errorString()));
    }
    return true;
}

// The next line without its line end, as a view into the buffer that holds until the
// next call. A line that grows past the longest line, a byte order mark and "\r\n" is
// too long whatever follows, so no more is read for it.
DxfReader::Next DxfReader::readLine(QByteArrayView& line) {
    if (atEnd()) {
        return m_error.isEmpty() ? Next::End : Next::Failed;
    }
    constexpr qsizetype kEnough = kMaxLineLength + 5;
    qsizetype end = -1;
    qsizetype searched = 0;  // from m_position
    while (end < 0) {
        const char* from = m_buffer.constData() + m_position + searched;
        const void* found =
            std::memchr(from, '\n', size_t(m_buffer.size() - m_position - searched));
        if (found) {
            end = static_cast<const char*>(found) - m_buffer.constData() + 1;
        } else if (m_buffer.size() - m_position > kEnough || m_exhausted) {
            end = m_buffer.size();
        } else {
            searched = m_buffer.size() - m_position;
            if (!fillBuffer()) {
                return Next::Failed;
            }
        }
    }
    line = QByteArrayView(m_buffer).sliced(m_position, end - m_position);
    m_position = end;
    ++m_lineNumber;
    if (m_lineNumber == 1 && line.startsWith("\xEF\xBB\xBF")) {
        line = line.sliced(3);
    }
    if (line.contains('\0')) {
        fail(QStringLiteral("binary data; this is no drawing in text form"));
        return Next::Failed;
    }
    while (line.endsWith('\n') || line.endsWith('\r')) {
        line.chop(1);
    }
    if (line.size() > kMaxLineLength) {
        fail(QStringLiteral("the line is longer than %1 bytes").arg(kMaxLineLength));
        return Next::Failed;
    }
    return Next::Group;
}

bool DxfReader::fail(const QString& reason) {
    return failAt(m_lineNumber, reason);
}

bool DxfReader::failAt(qint64 line, const QString& reason) {
    m_error = line > 0 ? QStringLiteral("line %1: %2").arg(line).arg(reason) : reason;
    return false;
}

bool DxfReader::handle(const Record& record) {
    if (record.type == "SECTION") {
        flushPolyline();
        const Group* name = find(record, 2);
        m_section = name ? name->value.trimmed().toUpper() : QByteArray("?");
        return true;
    }
    if (record.type == "ENDSEC") {
        flushPolyline();
        m_section.clear();
        m_inBlock = false;
        return true;
    }
    if (m_section == "BLOCKS" && (record.type == "BLOCK" || record.type == "ENDBLK")) {
        flushPolyline();
        if (record.type == "BLOCK") {
            beginBlock(record);
        } else {
            m_inBlock = false;
        }
        return true;
    }
    return takesEntities() ? handleEntity(record) : true;
}

bool DxfReader::handleEntity(const Record& record) {
    const QByteArray& type = record.type;
    if (type == "VERTEX") {
        return readVertex(record);
    }
    flushPolyline();  // anything but a vertex ends a POLYLINE, SEQEND or not
    if (type == "LINE") {
        return readLineEntity(record);
    }
    if (type == "ARC") {
        return readArc(record);
    }
    if (type == "CIRCLE") {
        return readCircle(record);
    }
    if (type == "LWPOLYLINE") {
        return readLightPolyline(record);
    }
    if (type == "POLYLINE") {
        return readPolylineStart(record);
    }
    if (type == "TEXT") {
        return readText(record);
    }
    if (type == "MTEXT") {
        return readParagraph(record);
    }
    if (type == "ATTDEF") {
        return readAttributeDefinition(record);
    }
    return true;
}

void DxfReader::flushPolyline() {
    if (m_hasPolyline) {
        m_sink.polyline(m_polyline);
    }
    m_hasPolyline = false;
    m_polyline = DxfPolyline();
}

bool DxfReader::takesEntities() const {
    return m_section == "ENTITIES" || m_section == "BLOCKS";
}

void DxfReader::beginBlock(const Record& record) {
    const QByteArray name = text(record, 2).toUpper().toUtf8();
    m_inBlock = true;
    m_blockSpace = name == "*MODEL_SPACE"   ? DxfSpace::Model
                   : name == "*PAPER_SPACE" ? DxfSpace::Paper
                                            : DxfSpace::None;
}

DxfSpace DxfReader::spaceOf(const Record& record) const {
    if (m_section == "BLOCKS") {
        return m_inBlock ? m_blockSpace : DxfSpace::None;
    }
    const Group* paper = find(record, 67);
    return paper && paper->value.trimmed().toInt() == 1 ? DxfSpace::Paper : DxfSpace::Model;
}

const DxfReader::Group* DxfReader::find(const Record& record, int code) const {
    for (const Group& group : record.groups()) {
        if (group.code == kEmbeddedObject) {
            return nullptr;
        }
        if (group.code == code) {
            return &group;
        }
    }
    return nullptr;
}

bool DxfReader::real(const Record& record, int code, double& value) {
    const Group* group = find(record, code);
    return !group || number(record, *group, value);
}

bool DxfReader::number(const Record& record, const Group& group, double& value) {
    bool ok = false;
    const double read = group.value.trimmed().toDouble(&ok);
    if (!ok || !(std::abs(read) <= kMaxMagnitude)) {
        return failAt(group.line, QStringLiteral("\"%1\" is no number (group %2 of %3)")
                                      .arg(DecodeBytes(group.value.left(40)))
                                      .arg(group.code)
                                      .arg(QString::fromLatin1(record.type)));
    }
    value = read;
    return true;
}

bool DxfReader::integer(const Record& record, int code, int& value) {
    double read = value;
    if (!real(record, code, read)) {
        return false;
    }
    value = static_cast<int>(qBound(-1e9, read, 1e9));
    return true;
}

QString DxfReader::text(const Record& record, int code) const {
    const Group* group = find(record, code);
    return group ? DecodeValue(group->value) : QString();
}

bool DxfReader::readLineEntity(const Record& record) {
    DxfLine line;
    if (!real(record, 10, line.start.rx()) || !real(record, 20, line.start.ry()) ||
        !real(record, 11, line.end.rx()) || !real(record, 21, line.end.ry())) {
        return false;
    }
    m_sink.line(line);
    return true;
}

bool DxfReader::readArc(const Record& record) {
    DxfArc arc;
    if (!real(record, 10, arc.center.rx()) || !real(record, 20, arc.center.ry()) ||
        !real(record, 40, arc.radius) || !real(record, 50, arc.startAngle) ||
        !real(record, 51, arc.endAngle)) {
        return false;
    }
    m_sink.arc(arc);
    return true;
}

bool DxfReader::readCircle(const Record& record) {
    DxfCircle circle;
    if (!real(record, 10, circle.center.rx()) || !real(record, 20, circle.center.ry()) ||
        !real(record, 40, circle.radius)) {
        return false;
    }
    m_sink.circle(circle);
    return true;
}

// Vertices repeat their 10 and 20 groups: each 10 starts the next point.
bool DxfReader::readLightPolyline(const Record& record) {
    DxfPolyline polyline;
    int flags = 0;
    if (!integer(record, 70, flags)) {
        return false;
    }
    polyline.closed = flags & 1;
    for (const Group& group : record.groups()) {
        if (group.code != 10 && (group.code != 20 || polyline.points.isEmpty())) {
            continue;
        }
        double value = 0.0;
        if (!number(record, group, value)) {
            return false;
        }
        if (group.code == 10) {
            polyline.points.append(QPointF(value, 0.0));
        } else {
            polyline.points.last().setY(value);
        }
    }
    m_sink.polyline(polyline);
    return true;
}

bool DxfReader::readPolylineStart(const Record& record) {
    int flags = 0;
    if (!integer(record, 70, flags)) {
        return false;
    }
    m_hasPolyline = true;
    m_polyline.closed = flags & 1;
    return true;
}

bool DxfReader::readVertex(const Record& record) {
    QPointF point;
    if (!real(record, 10, point.rx()) || !real(record, 20, point.ry())) {
        return false;
    }
    if (m_hasPolyline) {
        m_polyline.points.append(point);
    }
    return true;
}

bool DxfReader::readText(const Record& record) {
    DxfText text;
    if (!real(record, 10, text.position.rx()) || !real(record, 20, text.position.ry()) ||
        !real(record, 40, text.height) || !real(record, 50, text.rotation)) {
        return false;
    }
    text.text = this->text(record, 1);
    m_sink.text(text);
    return true;
}

// The text comes in pieces: any number of 3 groups, then the last piece in group 1.
// Without a rotation the direction vector 11/21 gives it.
bool DxfReader::readParagraph(const Record& record) {
    DxfText text;
    text.paragraph = true;
    QPointF direction;
    if (!real(record, 10, text.position.rx()) || !real(record, 20, text.position.ry()) ||
        !real(record, 40, text.height) || !real(record, 11, direction.rx()) ||
        !real(record, 21, direction.ry()) || !real(record, 50, text.rotation)) {
        return false;
    }
    if (!find(record, 50) && !direction.isNull()) {
        text.rotation = qRadiansToDegrees(std::atan2(direction.y(), direction.x()));
    }
    QByteArray pieces;
    for (const Group& group : record.groups()) {
        if (group.code == kEmbeddedObject) {
            break;
        }
        if (group.code == 3 || group.code == 1) {
            pieces += group.value;
        }
    }
    text.text = StripParagraphCodes(DecodeValue(pieces));
    m_sink.text(text);
    return true;
}

bool DxfReader::readAttributeDefinition(const Record& record) {
    DxfAttributeDefinition attribute;
    if (!real(record, 10, attribute.position.rx()) || !real(record, 20, attribute.position.ry()) ||
        !real(record, 30, attribute.z) || !real(record, 40, attribute.height) ||
        !real(record, 50, attribute.rotation) || !real(record, 41, attribute.widthFactor) ||
        !real(record, 51, attribute.oblique) || !integer(record, 70, attribute.flags) ||
        !integer(record, 72, attribute.horizontalMode) ||
        !integer(record, 74, attribute.verticalMode)) {
        return false;
    }
    attribute.space = spaceOf(record);
    attribute.tag = text(record, 2);
    attribute.prompt = text(record, 3);
    attribute.defaultValue = text(record, 1);
    m_sink.attribute(attribute);
    return true;
}
