#pragma once

#include <QString>

#include <cstddef>
#include <vector>

// Type codes of the host's typed value protocol.
enum HostType : short {
    kHostReal = 5001,
    kHostShort = 5003,
    kHostString = 5005,
    kHostListBegin = 5016,
    kHostListEnd = 5017,
    kHostNil = 5019,
    kHostTrue = 5021,
};

// Result codes of host calls.
enum HostResult : int {
    kHostOk = 5100,
    kHostErrorResult = -5001,
    kHostCancel = -5002,
    kHostRejected = -5003,
    kHostFailed = -5004,
};

// One cell of a typed value list.
struct HostCell {
    short type = kHostNil;
    double real = 0.0;
    short integer = 0;
    QString text;

    static HostCell Real(double value);
    static HostCell Short(short value);
    static HostCell String(const QString& value);
    static HostCell Marker(short type);

    bool operator==(const HostCell& other) const;
};

// A flat list of typed cells; nested lists are bracketed by list begin and end cells.
// It owns its cells, so releasing a list is leaving its scope.
class HostValue {
public:
    HostValue() = default;
    explicit HostValue(std::vector<HostCell> cells) : m_cells(std::move(cells)) {}

    HostValue& real(double value);
    HostValue& shortInt(short value);
    HostValue& string(const QString& value);
    HostValue& nil();
    HostValue& t();
    HostValue& begin();
    HostValue& end();
    HostValue& append(const HostCell& cell);
    HostValue& append(const HostValue& other);

    bool isEmpty() const { return m_cells.empty(); }
    std::size_t size() const { return m_cells.size(); }
    // The cell at index, or null when there is none.
    const HostCell* at(std::size_t index) const;
    const std::vector<HostCell>& cells() const { return m_cells; }
    void clear() { m_cells.clear(); }

    bool operator==(const HostValue& other) const { return m_cells == other.m_cells; }

private:
    std::vector<HostCell> m_cells;
};
