#include "storage/savesettings.h"

#include "storage/devicesettings.h"
#include "storage/devicesettingsex.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

#include <utility>

QByteArray SaveSettings::exFileFormatIdentifier = QStringLiteral("AAAA").toLatin1();

QMap<short, QString> SaveSettings::deviceCodes;

QMap<QString, QString> SaveSettings::oldVersionNames = {
    {QStringLiteral("VT-QX"), QStringLiteral("Vantor-QX")},
    {QStringLiteral("VT-QX10"), QStringLiteral("Vantor-QX10")},
    {QStringLiteral("VT-QX10-V"), QStringLiteral("Vantor-QX10-V")},
    {QStringLiteral("VT-QX20"), QStringLiteral("Vantor-QX20")},
    {QStringLiteral("VT-QX20-V"), QStringLiteral("Vantor-QX20-V")},
    {QStringLiteral("VT-QX30"), QStringLiteral("Vantor-QX30")},
    {QStringLiteral("VT-QX30-V"), QStringLiteral("Vantor-QX30-V")},
    {QStringLiteral("VT-QX40"), QStringLiteral("Vantor-QX40")},
    {QStringLiteral("VT-QX-T10"), QStringLiteral("Vantor-RT-T10")},
    {QStringLiteral("VT-QX-T20"), QStringLiteral("Vantor-RT-T20")},
};

namespace {

const QString settingsSuffix = QStringLiteral("dvsf");
const quint32 nullLength = 0xFFFFFFFF;

// Reads the big-endian fields that QDataStream writes, from a buffer held in
// memory. A length prefix is trusted only as far as the bytes that remain, so
// a hostile file cannot make the reader allocate more than the file's size.
// After the first fault every later field reads as zero or empty.
class FieldReader
{
public:
    FieldReader(QByteArray buffer, int start)
        : bytes(std::move(buffer))
        , pos(start)
    {
    }

    bool isDamaged() const { return damaged; }

    qint16 readInt16()
    {
        const uchar *field = take(2);
        return field ? qFromBigEndian<qint16>(field) : 0;
    }

    qint32 readInt32()
    {
        const uchar *field = take(4);
        return field ? qFromBigEndian<qint32>(field) : 0;
    }

    QByteArray readBytes()
    {
        quint32 length = 0;
        if (!readLength(length))
            return QByteArray();
        if (length == nullLength)
            return QByteArray();
        return readField(length);
    }

    // The last field of a record. When it runs exactly to the end of the
    // buffer, the buffer itself becomes the field: a large image is moved
    // within its own memory instead of being copied into a new one.
    QByteArray readLastBytes()
    {
        quint32 length = 0;
        if (!readLength(length) || length == nullLength)
            return QByteArray();
        if (damaged || quint32(bytes.size() - pos) != length || length == 0)
            return readField(length);
        QByteArray field = std::move(bytes);
        field.remove(0, pos);
        bytes = QByteArray();
        pos = 0;
        return field;
    }

    // UTF-16 text with big-endian code units; an odd byte count cannot be text.
    QString readString()
    {
        quint32 length = 0;
        if (!readLength(length))
            return QString();
        if (length == nullLength)
            return QString();
        if (length % 2 != 0) {
            damaged = true;
            return QString();
        }
        const uchar *field = take(length);
        if (!field)
            return QString();
        QString text(int(length / 2), Qt::Uninitialized);
        for (int i = 0; i < text.size(); ++i)
            text[i] = QChar(qFromBigEndian<quint16>(field + 2 * i));
        return text;
    }

private:
    QByteArray readField(quint32 length)
    {
        const uchar *field = take(length);
        if (!field)
            return QByteArray();
        return QByteArray(reinterpret_cast<const char *>(field), int(length));
    }

    bool readLength(quint32 &length)
    {
        const uchar *field = take(4);
        if (!field)
            return false;
        length = qFromBigEndian<quint32>(field);
        return true;
    }

    // The next count bytes, or null (and the reader damaged) if fewer remain.
    const uchar *take(quint32 count)
    {
        if (damaged || quint32(bytes.size() - pos) < count) {
            damaged = true;
            return nullptr;
        }
        const uchar *field = reinterpret_cast<const uchar *>(bytes.constData()) + pos;
        pos += int(count);
        return field;
    }

    QByteArray bytes;
    int pos;
    bool damaged = false;
};

QByteArray sha256(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256);
}

QString currentModelName(const QString &name)
{
    return SaveSettings::oldVersionNames.value(name, name);
}

void readCurrentGeneration(DeviceSettingsEx &settings, QByteArray bytes)
{
    FieldReader reader(std::move(bytes), SaveSettings::exFileFormatIdentifier.size());
    settings.deviceCode = reader.readInt16();
    settings.deviceName = reader.readString();
    settings.param16 = reader.readInt16();
    settings.param32 = reader.readInt32();
    settings.hash = reader.readBytes();
    settings.data = reader.readLastBytes();
    // A cut-off image can still match the digest of a shorter one (an empty
    // image, say); dropping the digest makes every damaged file show as such.
    if (reader.isDamaged())
        settings.hash.clear();
    settings.deviceName = currentModelName(settings.deviceName);
}

void readOldGeneration(DeviceSettingsEx &settings, QByteArray bytes)
{
    DeviceSettings old;
    const bool empty = bytes.isEmpty();
    FieldReader reader(std::move(bytes), 0);
    old.deviceCode = reader.readInt16();
    old.deviceName = reader.readString();
    old.param16 = reader.readInt16();
    old.data = reader.readLastBytes();

    settings.data = old.data;
    settings.deviceCode = old.deviceCode;
    settings.deviceName = currentModelName(old.deviceName);
    settings.param16 = old.param16;
    // These files carry no digest: an intact one gets the digest of its image
    // so that it passes the check. A damaged one gets none and fails it. An
    // empty file holds no fields at all and reads as an empty record.
    if (!reader.isDamaged() || empty)
        settings.hash = sha256(settings.data);
    else
        settings.hash.clear();

    for (auto it = SaveSettings::deviceCodes.cbegin(); it != SaveSettings::deviceCodes.cend(); ++it) {
        if (it.value() == settings.deviceName) {
            settings.deviceCode = it.key();
            break;
        }
    }
}

} // namespace

bool SaveSettings::save(DeviceSettingsEx &settings, QString path)
{
    settings.hash = sha256(settings.data);

    // The record as QDataStream writes it, but the image goes to the file
    // straight from the caller's record rather than through a copy.
    QByteArray header = exFileFormatIdentifier;
    {
        QDataStream stream(&header, QIODevice::Append);
        // The file's layout must not follow the Qt the library is built with.
        stream.setVersion(QDataStream::Qt_5_15);
        stream << settings.deviceCode << settings.deviceName << settings.param16 << settings.param32
               << settings.hash;
        stream << (settings.data.isNull() ? nullLength : quint32(settings.data.size()));
    }

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(header);
    file.write(settings.data);
    // Only a complete image replaces the earlier file; a failed write keeps
    // it, and the caller must know that nothing was saved.
    return file.commit();
}

bool SaveSettings::read(DeviceSettingsEx &settings, QString path)
{
    const QFileInfo info(path);
    if (!info.exists() || info.suffix() != settingsSuffix)
        return false;
    // Devices, pipes and folders are never settings files, and reading one
    // could block or never end.
    if (!info.isFile())
        return false;

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QByteArray bytes = file.readAll();
    file.close();

    if (bytes.startsWith(exFileFormatIdentifier))
        readCurrentGeneration(settings, std::move(bytes));
    else
        readOldGeneration(settings, std::move(bytes));
    return true;
}
