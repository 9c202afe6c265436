// Feeds saved inputs to a fuzz target's entry point, so that the seed corpus
// and every input that once crashed are replayed by the ordinary test run
// without libFuzzer. Arguments are files or folders (read one level deep).

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int *argc, char ***argv);

namespace {

QStringList inputFiles(const QString &path)
{
    const QFileInfo info(path);
    if (info.isFile())
        return {info.filePath()};
    QStringList files;
    const QFileInfoList entries = QDir(path).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &entry : entries)
        files << entry.filePath();
    return files;
}

} // namespace

int main(int argc, char **argv)
{
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);

    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QFile::decodeName(argv[i]);
        if (!QFileInfo::exists(path)) {
            std::fprintf(stderr, "no such input: %s\n", argv[i]);
            return 1;
        }
        for (const QString &name : inputFiles(path)) {
            QFile file(name);
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(name));
                return 1;
            }
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(
                reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size()));
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
