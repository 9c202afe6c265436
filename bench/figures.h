#ifndef FIGURES_H
#define FIGURES_H

#include <QString>

#include <string>
#include <vector>

// One line of the results table: a measured figure, the anchor it is set
// against in the same run, and the aim for their ratio.
struct Figure
{
    QString section;
    QString label;
    std::string figure; // benchmark names
    std::string anchor;
    QString anchorLabel;
    // The ratio is (figure / figureCount) / (anchor / anchorCount), so that
    // figures at different sizes compare per unit.
    double figureCount = 1;
    double anchorCount = 1;
    // Largest ratio that meets the aim; 0 when the figure is only reported.
    double aim = 0;
    // Compare this counter instead of the time per iteration.
    std::string counter;
};

const std::vector<Figure> &figures();

// Scratch folder for files the benchmarks write (from --workdir).
QString benchWorkDir();
void setBenchWorkDir(const QString &path);

// Peak resident memory of this process in KiB (VmHWM), 0 when unknown.
long peakResidentKiB();

#endif // FIGURES_H
