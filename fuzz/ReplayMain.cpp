// Without libFuzzer, each target runs every file of the folders it is given, once: the
// saved corpus (and any input that once crashed a reader) stays a test of the normal build.
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir folder(QString::fromLocal8Bit(argv[i]));
        for (const QFileInfo& info : folder.entryInfoList(QDir::Files, QDir::Name)) {
            QFile file(info.absoluteFilePath());
            if (!file.open(QIODevice::ReadOnly)) {
                continue;
            }
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                   static_cast<std::size_t>(bytes.size()));
            ++files;
        }
    }
    QTextStream(stdout) << files << " inputs replayed\n";
    return files > 0 ? 0 : 1;
}
