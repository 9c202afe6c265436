#include <storage/devicesettingsex.h>
#include <storage/savesettings.h>

#include "filehelpers.h"

#include <QtTest>

#include <QCryptographicHash>
#include <QTemporaryDir>

#include <sys/stat.h>

using DeviceCodes = QMap<short, QString>;

namespace {

// Big-endian fields written by hand, independently of QDataStream.
const auto be16 = [](int v) { return QByteArray() + char((v >> 8) & 0xFF) + char(v & 0xFF); };
const auto be32 = [](quint32 v) { return be16(int(v >> 16)) + be16(int(v & 0xFFFF)); };
const auto sha256
    = [](const QByteArray &data) { return QCryptographicHash::hash(data, QCryptographicHash::Sha256); };
const auto bytesField = [](const QByteArray &bytes) {
    return bytes.isNull() ? be32(0xFFFFFFFF) : be32(quint32(bytes.size())) + bytes;
};
QByteArray textField(const QString &text)
{
    QByteArray utf16;
    for (const QChar c : text)
        utf16 += be16(c.unicode());
    return text.isNull() ? be32(0xFFFFFFFF) : be32(quint32(utf16.size())) + utf16;
}
QByteArray currentFile(int code, const QString &name, int p16, qint32 p32, const QByteArray &data)
{
    return "AAAA" + be16(code) + textField(name) + be16(p16) + be32(quint32(p32)) + bytesField(sha256(data))
        + bytesField(data);
}
const auto oldFile = [](int code, const QString &name, int p16, const QByteArray &data) {
    return be16(code) + textField(name) + be16(p16) + bytesField(data);
};

} // namespace

Q_DECLARE_METATYPE(DeviceSettingsEx)

class tst_SaveSettings : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        dir.reset(new QTemporaryDir);
        QVERIFY(dir->isValid());
        SaveSettings::deviceCodes.clear();
    }

    void saveLayoutAndReadBack_data()
    {
        QTest::addColumn<DeviceSettingsEx>("saved");
        QTest::newRow("typical") << DeviceSettingsEx {
            12, "Vantor-QX20", 3, 70000, {}, QByteArray("\x01\x00\xFF", 3)};
        QTest::newRow("negative numbers") << DeviceSettingsEx {-2, "M", -32768, -1, {}, "x"};
        QTest::newRow("null name and image") << DeviceSettingsEx {};
        QTest::newRow("text beyond latin-1, large image") << DeviceSettingsEx {
            9, QString::fromUtf8("Узел \xF0\x9F\x93\xA1"), 1, 2, {}, QByteArray(70000, '\x5A')};
    }
    void saveLayoutAndReadBack()
    {
        QFETCH(DeviceSettingsEx, saved);
        saved.hash = "stale";
        // Saving replaces a longer earlier file whole, leaving no temporary file.
        const QString path = dir->filePath("unit.dvsf");
        QVERIFY(writeFile(path, QByteArray(100000, 'z')));
        QVERIFY(SaveSettings::save(saved, path));
        QCOMPARE(saved.hash, sha256(saved.data));
        QCOMPARE(readFile(path),
            currentFile(saved.deviceCode, saved.deviceName, saved.param16, saved.param32, saved.data));
        QCOMPARE(QDir(dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList {"unit.dvsf"});
        DeviceSettingsEx loaded;
        QVERIFY(SaveSettings::read(loaded, path));
        QCOMPARE(loaded, saved);
        QVERIFY(!loaded.isCorrupted());
    }

    void readRefuses()
    {
        const QByteArray valid = currentFile(4, "X", 1, 2, "d");
        QVERIFY(
            writeFile(dir->filePath("unit.DVSF"), valid) && writeFile(dir->filePath("unit.dvsf.bak"), valid));
        QVERIFY(QDir(dir->path()).mkdir("folder.dvsf"));
        QCOMPARE(::mkfifo(QFile::encodeName(dir->filePath("pipe.dvsf")).constData(), 0600), 0);
        // Nobody writes to the pipe: opening it would block the reader for good.
        for (const char *name : {"absent.dvsf", "unit.DVSF", "unit.dvsf.bak", "folder.dvsf", "pipe.dvsf"}) {
            DeviceSettingsEx settings {0, "untouched", 0, 5, {}, {}};
            QVERIFY2(!SaveSettings::read(settings, dir->filePath(name)), name);
            QCOMPARE(settings, (DeviceSettingsEx {0, "untouched", 0, 5, {}, {}}));
        }
    }

    void modelNames_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<DeviceCodes>("codes");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("code");
        const DeviceCodes t20 {{40, "Vantor-RT-T20"}};
        QTest::newRow("old name, code registered")
            << oldFile(1, "VT-QX-T20", 7, "img") << t20 << "Vantor-RT-T20" << 40;
        QTest::newRow("old name, not registered")
            << oldFile(8, "VT-QX10-V", 7, "img") << t20 << "Vantor-QX10-V" << 8;
        QTest::newRow("lowest of several codes")
            << oldFile(2, "Vantor-QX", 7, "img")
            << DeviceCodes {{7, "Vantor-QX"}, {-5, "Vantor-QX"}, {-9, "Other"}} << "Vantor-QX" << -5;
        QTest::newRow("name differs in case") << oldFile(5, "vt-qx", 7, "img") << t20 << "vt-qx" << 5;
        QTest::newRow("current file: name mapped, code kept")
            << currentFile(6, "VT-QX-T20", 7, 2, "img") << t20 << "Vantor-RT-T20" << 6;
    }
    void modelNames()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, name);
        QFETCH(int, code);
        QFETCH(DeviceCodes, codes);
        SaveSettings::deviceCodes = codes;
        const QString path = dir->filePath("named.dvsf");
        QVERIFY(writeFile(path, file));
        DeviceSettingsEx settings {0, {}, 0, -1, {}, {}};
        QVERIFY(SaveSettings::read(settings, path));
        // Old files have no param32: the record keeps what it had (-1).
        const qint32 p32 = file.startsWith("AAAA") ? 2 : -1;
        QCOMPARE(settings, (DeviceSettingsEx {qint16(code), name, 7, p32, sha256("img"), "img"}));
    }

    void damagedContent_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<bool>("corrupted");
        const QByteArray head = "AAAA" + be16(7) + textField("N") + be16(1) + be32(2);
        QByteArray altered = currentFile(7, "N", 1, 2, QByteArray(64, '\x01'));
        altered[altered.size() - 1] = '\x02';
        // An empty file is an old-generation file holding nothing.
        QTest::newRow("empty file") << QByteArray() << false;
        QTest::newRow("image byte altered") << altered << true;
        QTest::newRow("huge name") << "AAAA" + be16(7) + be32(0x7FFFFFFE) + "ab" << true;
        QTest::newRow("odd name length") << "AAAA" + be16(7) + be32(3) + "abc" + be16(1) + be32(2) << true;
        // A cut-off image must not pass merely because the digest is of an empty one.
        QTest::newRow("huge image after digest of nothing")
            << head + bytesField(sha256("")) + be32(0x10000000) + "x" << true;
        // Bytes after the image are not part of it: the image still matches.
        QTest::newRow("bytes after the image") << currentFile(7, "N", 1, 2, "image") + "zz" << false;
        QTest::newRow("old, huge image") << be16(7) + textField("N") + be16(0) + be32(0xFFFFFFF0) << true;
    }
    void damagedContent()
    {
        QFETCH(QByteArray, file);
        const QString path = dir->filePath("damaged.dvsf");
        QVERIFY(writeFile(path, file));
        DeviceSettingsEx settings {0, {}, 0, 0, {}, "before"};
        QVERIFY(SaveSettings::read(settings, path));
        QTEST(settings.isCorrupted(), "corrupted");
        QCOMPARE(int(settings.deviceCode), file.isEmpty() || file == "AAAA" ? 0 : 7);
        QVERIFY(settings.data.size() <= file.size() && settings.deviceName.size() <= file.size());
    }

    void truncatedAtEveryByte()
    {
        const QList<QByteArray> files {currentFile(3, "QX", 4, 5, "image"), currentFile(3, "QX", 4, 5, ""),
            oldFile(3, "QX", 4, "image"), oldFile(3, "QX", 4, "")};
        const QString path = dir->filePath("cut.dvsf");
        for (const QByteArray &whole : files) {
            for (int size = 1; size <= whole.size(); ++size) {
                QVERIFY(writeFile(path, whole.left(size)));
                DeviceSettingsEx settings;
                QVERIFY(SaveSettings::read(settings, path));
                QVERIFY2(settings.isCorrupted() == (size < whole.size()), qPrintable(QString::number(size)));
            }
        }
    }

private:
    QScopedPointer<QTemporaryDir> dir;
};

QTEST_GUILESS_MAIN(tst_SaveSettings)
#include "tst_savesettings.moc"
