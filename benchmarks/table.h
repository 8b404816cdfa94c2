#ifndef OVWBENCH_TABLE_H
#define OVWBENCH_TABLE_H

#include <benchmark/benchmark.h>

#include <string>

namespace ovwbench {

/// Prints a line a workload: its figure, the limit's, the ratio of the two, and the aim where there is one.
class Table : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    void printRow(const Run& run);
    /// Whether a value reaches its aim, which `aimText` writes; "" without an aim.
    std::string verdict(double value, double aim, const std::string& aimText);

    std::string m_family; ///< of the row before
    int m_aims = 0;
    int m_reached = 0;
};

} // namespace ovwbench

#endif // OVWBENCH_TABLE_H
