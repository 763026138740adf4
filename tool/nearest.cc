#include "nearest.h"

#include <stddef.h>
#include <algorithm>

#include "text.h"

namespace cfql::tool {

namespace {

constexpr size_t longest = 64;  // longer than any known name

// The Damerau-Levenshtein distance, each pair of letters exchanged at most once. Rows are positions in `a`.
size_t slips(std::string_view a, std::string_view b) {
    std::vector<std::vector<size_t>> cost(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const size_t changed = cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            cost[i][j] = std::min({changed, cost[i - 1][j] + 1, cost[i][j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}

}  // namespace

std::string nearest(std::string_view text, const std::vector<std::string>& known) {
    if (text.size() > longest) return {};
    std::string best;
    size_t least = std::max<size_t>(text.size() / 3, 1) + 1;
    for (const std::string& candidate : known) {
        const size_t count = slips(text, candidate);
        if (count >= least) continue;
        least = count;
        best = candidate;
    }
    return best;
}

std::string suggestion(std::string_view text, const std::vector<std::string>& known) {
    const std::string found = nearest(text, known);
    return found.empty() ? std::string() : "; did you mean " + quoted(found) + '?';
}

}  // namespace cfql::tool
