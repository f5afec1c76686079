#include "RatioReporter.h"

#include <iomanip>
#include <sstream>

namespace {

constexpr int nameWidth = 44;
constexpr int counterWidth = 9;

}  // namespace

bool RatioReporter::ReportContext(const Context& context) {
    PrintBasicContext(&GetErrorStream(), context);
    std::ostream& out = GetOutputStream();
    out << "| " << std::left << std::setw(nameWidth) << "case" << std::right;
    for (const std::string& name : counters_)
        out << " | " << std::setw(counterWidth) << name;
    out << " |\n|" << std::string(nameWidth + 2, '-');
    for (size_t i = 0; i < counters_.size(); ++i)
        out << '|' << std::string(counterWidth + 1, '-') << ':';
    out << "|\n" << std::flush;
    return true;
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        std::ostringstream row;
        row << "| " << std::left << std::setw(nameWidth) << run.run_name.function_name << std::right << std::fixed;
        for (const std::string& name : counters_) {
            const auto found = run.counters.find(name);
            row << " | " << std::setw(counterWidth);
            if (found == run.counters.end())
                row << "";
            else
                row << std::setprecision(found->second.value < 10.0 ? 2 : 1) << found->second.value;
        }
        GetOutputStream() << row.str() << " |\n" << std::flush;
    }
}
