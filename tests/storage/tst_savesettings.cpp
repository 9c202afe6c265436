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
QByteArray be16(int v)
{
    return QByteArray() + char((v >> 8) & 0xFF) + char(v & 0xFF);
}

QByteArray be32(quint32 v)
{
    return be16(int(v >> 16)) + be16(int(v & 0xFFFF));
}

QByteArray bytesField(const QByteArray &bytes)
{
    return bytes.isNull() ? be32(0xFFFFFFFF) : be32(quint32(bytes.size())) + bytes;
}

QByteArray textField(const QString &text)
{
    QByteArray utf16;
    for (const QChar c : text)
        utf16 += be16(c.unicode());
    return text.isNull() ? be32(0xFFFFFFFF) : be32(quint32(utf16.size())) + utf16;
}

QByteArray sha256(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256);
}

QByteArray currentFile(int code, const QString &name, int p16, qint32 p32, const QByteArray &data)
{
    return "AAAA" + be16(code) + textField(name) + be16(p16) + be32(quint32(p32)) + bytesField(sha256(data))
        + bytesField(data);
}

QByteArray oldFile(int code, const QString &name, int p16, const QByteArray &data)
{
    return be16(code) + textField(name) + be16(p16) + bytesField(data);
}

} // namespace

class tst_SaveSettings : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void saveLayoutAndReadBack_data();
    void saveLayoutAndReadBack();
    void saveFailureKeepsEverything_data();
    void saveFailureKeepsEverything();
    void readRefuses_data();
    void readRefuses();
    void modelNames_data();
    void modelNames();
    void damagedContent_data();
    void damagedContent();
    void truncatedAtEveryByte();

private:
    QScopedPointer<QTemporaryDir> dir;
};

void tst_SaveSettings::init()
{
    dir.reset(new QTemporaryDir);
    QVERIFY(dir->isValid());
    SaveSettings::deviceCodes.clear();
}

void tst_SaveSettings::saveLayoutAndReadBack_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("p16");
    QTest::addColumn<qint32>("p32");
    QTest::addColumn<QByteArray>("data");

    QTest::newRow("typical") << 12 << "Vantor-QX20" << 3 << 70000 << QByteArray("\x01\x02\x00\xFF", 4);
    QTest::newRow("negative numbers") << -2 << "M" << -32768 << -1 << QByteArray("x");
    QTest::newRow("null name and image") << 0 << QString() << 0 << 0 << QByteArray();
    QTest::newRow("text beyond latin-1, large image")
        << 9 << QString::fromUtf8("Узел \xF0\x9F\x93\xA1") << 1 << 2 << QByteArray(70000, '\x5A');
}

void tst_SaveSettings::saveLayoutAndReadBack()
{
    QFETCH(int, code);
    QFETCH(QString, name);
    QFETCH(int, p16);
    QFETCH(qint32, p32);
    QFETCH(QByteArray, data);

    DeviceSettingsEx saved;
    saved.deviceCode = qint16(code);
    saved.deviceName = name;
    saved.param16 = qint16(p16);
    saved.param32 = p32;
    saved.hash = "stale";
    saved.data = data;

    // Saving replaces a longer earlier file whole, leaving no temporary file.
    const QString path = dir->filePath("unit.dvsf");
    QVERIFY(writeFile(path, QByteArray(100000, 'z')));
    QVERIFY(SaveSettings::save(saved, path));
    QCOMPARE(saved.hash, sha256(data));
    QCOMPARE(readFile(path), currentFile(code, name, p16, p32, data));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList {"unit.dvsf"});

    DeviceSettingsEx loaded;
    QVERIFY(SaveSettings::read(loaded, path));
    QCOMPARE(loaded, saved);
    QVERIFY(!loaded.isCorrupted());
}

void tst_SaveSettings::saveFailureKeepsEverything_data()
{
    QTest::addColumn<QString>("target");

    QTest::newRow("folder missing") << "missing/unit.dvsf";
    QTest::newRow("target is a folder") << "folder.dvsf";
    QTest::newRow("below a plain file") << "plain/unit.dvsf";
}

void tst_SaveSettings::saveFailureKeepsEverything()
{
    QFETCH(QString, target);
    QVERIFY(QDir(dir->path()).mkdir("folder.dvsf"));
    QVERIFY(writeFile(dir->filePath("plain"), "keep"));

    DeviceSettingsEx settings;
    settings.data = "image";
    QVERIFY(!SaveSettings::save(settings, dir->filePath(target)));
    QCOMPARE(settings.hash, sha256("image"));
    QVERIFY(QFileInfo(dir->filePath("folder.dvsf")).isDir());
    QCOMPARE(readFile(dir->filePath("plain")), QByteArray("keep"));
    QCOMPARE(QDir(dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 2);
}

void tst_SaveSettings::readRefuses_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("missing") << "absent.dvsf";
    QTest::newRow("upper-case suffix") << "unit.DVSF";
    QTest::newRow("other suffix") << "unit.dvsf.bak";
    QTest::newRow("folder") << "folder.dvsf";
    // Nobody writes to the pipe: opening it would block the reader for good.
    QTest::newRow("pipe") << "pipe.dvsf";
}

void tst_SaveSettings::readRefuses()
{
    QFETCH(QString, name);
    const QByteArray valid = currentFile(4, "X", 1, 2, "d");
    QVERIFY(writeFile(dir->filePath("unit.DVSF"), valid) && writeFile(dir->filePath("unit.dvsf.bak"), valid));
    QVERIFY(QDir(dir->path()).mkdir("folder.dvsf"));
    QCOMPARE(::mkfifo(QFile::encodeName(dir->filePath("pipe.dvsf")).constData(), 0600), 0);

    DeviceSettingsEx settings;
    settings.deviceName = "untouched";
    settings.param32 = 5;
    const DeviceSettingsEx before = settings;
    QVERIFY(!SaveSettings::read(settings, dir->filePath(name)));
    QCOMPARE(settings, before);
}

void tst_SaveSettings::modelNames_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<DeviceCodes>("codes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    QTest::addColumn<qint32>("p32");

    const DeviceCodes t20 {{40, "Vantor-RT-T20"}};
    // Old files have no param32: the record keeps what it had (-1).
    QTest::newRow("old name, code registered")
        << oldFile(1, "VT-QX-T20", 7, "img") << t20 << "Vantor-RT-T20" << 40 << -1;
    QTest::newRow("old name, not registered")
        << oldFile(8, "VT-QX10-V", 7, "img") << t20 << "Vantor-QX10-V" << 8 << -1;
    QTest::newRow("lowest of several codes")
        << oldFile(2, "Vantor-QX", 7, "img")
        << DeviceCodes {{7, "Vantor-QX"}, {-5, "Vantor-QX"}, {-9, "Other"}} << "Vantor-QX" << -5 << -1;
    QTest::newRow("name differs in case") << oldFile(5, "vt-qx", 7, "img") << t20 << "vt-qx" << 5 << -1;
    QTest::newRow("current file: name mapped, code kept")
        << currentFile(6, "VT-QX-T20", 7, 2, "img") << t20 << "Vantor-RT-T20" << 6 << 2;
}

void tst_SaveSettings::modelNames()
{
    QFETCH(QByteArray, file);
    QFETCH(DeviceCodes, codes);
    QFETCH(QString, name);
    QFETCH(int, code);
    QFETCH(qint32, p32);

    SaveSettings::deviceCodes = codes;
    const QString path = dir->filePath("named.dvsf");
    QVERIFY(writeFile(path, file));
    DeviceSettingsEx settings;
    settings.param32 = -1;
    QVERIFY(SaveSettings::read(settings, path));
    QCOMPARE(settings.deviceName, name);
    QCOMPARE(int(settings.deviceCode), code);
    QCOMPARE(settings.param16, qint16(7));
    QCOMPARE(settings.param32, p32);
    QCOMPARE(settings.data, QByteArray("img"));
    QCOMPARE(settings.hash, sha256("img"));
}

void tst_SaveSettings::damagedContent_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("corrupted");

    const QByteArray head = "AAAA" + be16(7) + textField("N") + be16(1) + be32(2);
    QByteArray altered = currentFile(7, "N", 1, 2, QByteArray(64, '\x01'));
    altered[altered.size() - 1] = '\x02';
    QByteArray badDigest = currentFile(7, "N", 1, 2, QByteArray(64, '\x01'));
    badDigest[badDigest.size() - 69] = '\x00';

    // An empty file is an old-generation file holding nothing.
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("identifier only") << QByteArray("AAAA") << true;
    QTest::newRow("image byte altered") << altered << true;
    QTest::newRow("digest byte altered") << badDigest << true;
    QTest::newRow("huge name") << "AAAA" + be16(7) + be32(0x7FFFFFFE) + "ab" << true;
    QTest::newRow("name near null marker") << "AAAA" + be16(7) + be32(0xFFFFFFFE) + "abcd" << true;
    QTest::newRow("odd name length") << "AAAA" + be16(7) + be32(3) + "abc" + be16(1) + be32(2) << true;
    QTest::newRow("huge digest") << head + be32(0x40000000) + "xyz" << true;
    // A cut-off image must not pass merely because the digest is of an empty one.
    QTest::newRow("huge image after digest of nothing")
        << head + bytesField(sha256("")) + be32(0x10000000) + "x" << true;
    // Bytes after the image are not part of it: the image still matches.
    QTest::newRow("bytes after the image") << currentFile(7, "N", 1, 2, "image") + "zz" << false;
    QTest::newRow("old, bytes after the image") << oldFile(7, "N", 1, "image") + "zz" << false;
    QTest::newRow("old, huge name") << be16(7) + be32(0x7FFFFFFE) + "abc" << true;
    QTest::newRow("old, huge image") << be16(7) + textField("N") + be16(0) + be32(0xFFFFFFF0) << true;
}

void tst_SaveSettings::damagedContent()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, corrupted);

    const QString path = dir->filePath("damaged.dvsf");
    QVERIFY(writeFile(path, file));
    DeviceSettingsEx settings;
    settings.data = "before";
    QVERIFY(SaveSettings::read(settings, path));
    QCOMPARE(settings.isCorrupted(), corrupted);
    QCOMPARE(int(settings.deviceCode), file.isEmpty() || file == "AAAA" ? 0 : 7);
    QVERIFY(settings.data.size() <= file.size() && settings.deviceName.size() <= file.size());
}

void tst_SaveSettings::truncatedAtEveryByte()
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

QTEST_GUILESS_MAIN(tst_SaveSettings)
#include "tst_savesettings.moc"
