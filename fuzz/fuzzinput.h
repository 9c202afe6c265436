#ifndef FUZZINPUT_H
#define FUZZINPUT_H

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

// Splits a fuzz input into the small numbers and texts a target needs.
// Running out of bytes yields zeros and empty texts, never an error.
class FuzzInput
{
public:
    FuzzInput(const uint8_t *data, size_t size)
        : bytes(reinterpret_cast<const char *>(data), int(size))
    {
    }

    bool atEnd() const { return pos >= bytes.size(); }

    quint8 byte() { return atEnd() ? 0 : quint8(bytes.at(pos++)); }

    quint16 word() { return quint16(byte() | (quint16(byte()) << 8)); }

    quint32 dword() { return quint32(word()) | (quint32(word()) << 16); }

    // Up to the next separator (consumed) or the end.
    QByteArray field(char separator = '\n')
    {
        if (atEnd())
            return QByteArray();
        int end = bytes.indexOf(separator, pos);
        if (end < 0)
            end = bytes.size();
        const QByteArray result = bytes.mid(pos, end - pos);
        pos = end + 1;
        return result;
    }

    QString latin1Field(char separator = '\n')
    {
        const QByteArray raw = field(separator);
        return QString::fromLatin1(raw.constData(), raw.size());
    }

    QByteArray rest()
    {
        const QByteArray result = bytes.mid(pos);
        pos = bytes.size();
        return result;
    }

private:
    QByteArray bytes;
    int pos = 0;
};

// Stops the run where a property of the library does not hold; libFuzzer
// and the replay driver both report the abort with the input that caused it.
#define FUZZ_CHECK(condition)                                                                                \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            qFatal("%s:%d: check failed: %s", __FILE__, __LINE__, #condition);                               \
        }                                                                                                    \
    } while (false)

#endif // FUZZINPUT_H
