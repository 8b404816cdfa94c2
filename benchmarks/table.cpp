#include "table.h"

#include "duel.h"

#include <cstdio>

namespace ovwbench {

namespace {

constexpr const char* cnRowFormat = "%-34s %10s %-9s %10s %-20s %6s  %-12s %7s %10s\n";

/// Three or four digits, with k or M behind large numbers.
std::string shortened(double value) {
    char text[32];
    if (value >= 1e6)
        std::snprintf(text, sizeof text, "%.2f M", value / 1e6);
    else if (value >= 1e5)
        std::snprintf(text, sizeof text, "%.0f k", value / 1e3);
    else if (value >= 1e4)
        std::snprintf(text, sizeof text, "%.1f k", value / 1e3);
    else
        std::snprintf(text, sizeof text, value >= 100 ? "%.0f" : "%.3g", value);
    return text;
}

std::string ratioText(double ratio) {
    char text[32];
    std::snprintf(text, sizeof text, ratio >= 0.1 ? "%.2f" : "%.3f", ratio);
    return text;
}

double counterOf(const benchmark::BenchmarkReporter::Run& run, const char* name) {
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0.0 : found->second.value;
}

} // namespace

bool Table::ReportContext(const Context& context) {
    std::printf("One thread on %d processors; medians of turns, so look at the ratio, not at the figures. A ratio is\n"
                "figure / limit. allocs: heap allocations a dab, a sample or a call.\n\n",
                context.cpu_info.num_cpus);
    std::printf(cnRowFormat, "workload", "figure", "", "limit", "", "ratio", "aim", "allocs", "Mpixel/s");
    return true;
}

void Table::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type == Run::RT_Iteration)
            printRow(run);
    }
    std::fflush(stdout);
}

void Table::printRow(const Run& run) {
    const std::string& name = run.run_name.function_name;
    if (run.error_occurred) {
        std::printf("%-34s failed: %s\n", name.c_str(), run.error_message.c_str());
        return;
    }
    const std::string family = name.substr(0, name.find('/'));
    if (family != m_family)
        std::puts("");
    m_family = family;
    const std::size_t separator = run.report_label.find(cnLabelSeparator);
    const double ratio = counterOf(run, cnRatio);
    const double pixels = counterOf(run, cnPixels);
    const double figure = counterOf(run, cnFigure), aim = counterOf(run, cnAim), aimed = counterOf(run, cnAimedFigure);
    const std::string reached =
        aimed > 0.0 ? verdict(figure, aimed, shortened(aimed)) : verdict(ratio, aim, ratioText(aim));
    std::printf(cnRowFormat, name.c_str(), shortened(figure).c_str(), run.report_label.substr(0, separator).c_str(),
                shortened(counterOf(run, cnLimit)).c_str(), run.report_label.substr(separator + 1).c_str(),
                ratioText(ratio).c_str(), reached.c_str(), shortened(counterOf(run, cnAllocations)).c_str(),
                pixels > 0.0 ? shortened(pixels).c_str() : "");
}

std::string Table::verdict(double value, double aim, const std::string& aimText) {
    if (aim <= 0.0)
        return "";
    m_aims++;
    m_reached += value >= aim;
    return ">= " + aimText + (value >= aim ? " yes" : " NO");
}

void Table::Finalize() {
    if (m_aims > 0)
        std::printf("\n%d of %d aims reached.\n", m_reached, m_aims);
}

} // namespace ovwbench
