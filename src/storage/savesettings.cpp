#include "storage/savesettings.h"

#include "storage/devicesettings.h"
#include "storage/devicesettingsex.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

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
    FieldReader(const QByteArray &buffer, int start)
        : bytes(buffer)
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
        const uchar *field = take(length);
        if (!field)
            return QByteArray();
        return QByteArray(reinterpret_cast<const char *>(field), int(length));
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

    const QByteArray &bytes;
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

void readCurrentGeneration(DeviceSettingsEx &settings, const QByteArray &bytes)
{
    FieldReader reader(bytes, SaveSettings::exFileFormatIdentifier.size());
    settings.deviceCode = reader.readInt16();
    settings.deviceName = reader.readString();
    settings.param16 = reader.readInt16();
    settings.param32 = reader.readInt32();
    settings.hash = reader.readBytes();
    settings.data = reader.readBytes();
    // A cut-off image can still match the digest of a shorter one (an empty
    // image, say); dropping the digest makes every damaged file show as such.
    if (reader.isDamaged())
        settings.hash.clear();
    settings.deviceName = currentModelName(settings.deviceName);
}

void readOldGeneration(DeviceSettingsEx &settings, const QByteArray &bytes)
{
    DeviceSettings old;
    FieldReader reader(bytes, 0);
    old.deviceCode = reader.readInt16();
    old.deviceName = reader.readString();
    old.param16 = reader.readInt16();
    old.data = reader.readBytes();

    settings.data = old.data;
    settings.deviceCode = old.deviceCode;
    settings.deviceName = currentModelName(old.deviceName);
    settings.param16 = old.param16;
    // These files carry no digest: an intact one gets the digest of its image
    // so that it passes the check. A damaged one gets none and fails it. An
    // empty file holds no fields at all and reads as an empty record.
    if (!reader.isDamaged() || bytes.isEmpty())
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

    QByteArray record;
    {
        QDataStream stream(&record, QIODevice::WriteOnly);
        stream << settings.deviceCode << settings.deviceName << settings.param16 << settings.param32
               << settings.hash << settings.data;
    }

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(exFileFormatIdentifier + record);
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
    const QByteArray bytes = file.readAll();
    file.close();

    if (bytes.startsWith(exFileFormatIdentifier))
        readCurrentGeneration(settings, bytes);
    else
        readOldGeneration(settings, bytes);
    return true;
}
