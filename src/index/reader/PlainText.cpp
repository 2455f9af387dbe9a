#include "index/reader/Readers.h"

#include <QFile>
#include <QStringDecoder>

namespace reader {

// A text file in UTF-8, or in Latin-1 when it is not valid UTF-8.
QString readPlainText(const QString& path, const Limits& limits) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure{CannotOpen, QStringLiteral("The file cannot be opened: %1.").arg(file.errorString())};
    const QByteArray data = file.read(limits.textBytes + 1);
    if (data.size() > limits.textBytes)
        throw Failure{TooLarge, QStringLiteral("The text file is larger than %1 MB, more than is read.")
                                    .arg(QString::number(limits.textBytes >> 20))};
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(data);
    return utf8.hasError() ? QString::fromLatin1(data) : text;
}

} // namespace reader
