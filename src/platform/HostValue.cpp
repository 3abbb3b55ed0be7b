#include "HostValue.h"

HostCell HostCell::Real(double value) {
    HostCell cell;
    cell.type = kHostReal;
    cell.real = value;
    return cell;
}

HostCell HostCell::Short(short value) {
    HostCell cell;
    cell.type = kHostShort;
    cell.integer = value;
    return cell;
}

HostCell HostCell::String(const QString& value) {
    HostCell cell;
    cell.type = kHostString;
    cell.text = value;
    return cell;
}

HostCell HostCell::Marker(short type) {
    HostCell cell;
    cell.type = type;
    return cell;
}

bool HostCell::operator==(const HostCell& other) const {
    if (type != other.type) {
        return false;
    }
    switch (type) {
        case kHostReal:
            return real == other.real;
        case kHostShort:
            return integer == other.integer;
        case kHostString:
            return text == other.text;
        default:
            return true;
    }
}

HostValue& HostValue::real(double value) {
    return append(HostCell::Real(value));
}
HostValue& HostValue::shortInt(short value) {
    return append(HostCell::Short(value));
}
HostValue& HostValue::string(const QString& value) {
    return append(HostCell::String(value));
}
HostValue& HostValue::nil() {
    return append(HostCell::Marker(kHostNil));
}
HostValue& HostValue::t() {
    return append(HostCell::Marker(kHostTrue));
}
HostValue& HostValue::begin() {
    return append(HostCell::Marker(kHostListBegin));
}
HostValue& HostValue::end() {
    return append(HostCell::Marker(kHostListEnd));
}

HostValue& HostValue::append(const HostCell& cell) {
    m_cells.push_back(cell);
    return *this;
}

HostValue& HostValue::append(const HostValue& other) {
    m_cells.insert(m_cells.end(), other.m_cells.begin(), other.m_cells.end());
    return *this;
}

const HostCell* HostValue::at(std::size_t index) const {
    return index < m_cells.size() ? &m_cells[index] : nullptr;
}
