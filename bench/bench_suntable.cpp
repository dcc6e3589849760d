// Measures a whole year's sunrise/sunset table: building the document (one day's rise and
// set per date of both columns) and writing it as "TWTable.rtf". Prints the median and the
// worst of several runs. Usage: bench_suntable [RUNS]
#include "Measure.h"
#include "sun/SunTable.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 21;
    QTemporaryDir dir;
    if (!dir.isValid())
        return 1;
    const QString path = QDir(dir.path()).filePath(QStringLiteral("TWTable.rtf"));
    const SunTablePlace place{QStringLiteral("Chicago"), 41, 52, 87, 38, 6, QStringLiteral("2004")};

    qsizetype bytes = 0;
    const Figures build = Measure(runs, [&] { bytes = SunTableDocument(place).size(); });
    QString error;
    const Figures write = Measure(runs, [&] { error = WriteSunTable(place, path); });
    if (!error.isEmpty()) {
        std::fprintf(stderr, "bench_suntable: %s\n", qPrintable(error));
        return 1;
    }
    const Figures print = Measure(runs, [&] { bytes += SunTablePrintLines(place).Rows.size(); });

    std::printf("runs=%d document_bytes=%lld\n", runs,
                static_cast<long long>(SunTableDocument(place).size()));
    std::printf("build_document_ms median=%.3f worst=%.3f\n", build.Median, build.Worst);
    std::printf("write_table_ms median=%.3f worst=%.3f\n", write.Median, write.Worst);
    std::printf("printed_rows_ms median=%.3f worst=%.3f\n", print.Median, print.Worst);
    return bytes > 0 ? 0 : 1;
}
