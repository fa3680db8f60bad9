// SPDX-License-Identifier: MIT
#ifndef JW_TESTS_CAMPAIGN_RUN_H
#define JW_TESTS_CAMPAIGN_RUN_H

#include <cstdint>
#include <string>
#include <vector>

namespace jwtest {

struct CampaignSettings {
    std::uint64_t pairs = 20000;
    std::uint64_t seed = 1;
    std::vector<std::string> families;  ///< all, if none is named
    std::int64_t only = -1;             ///< this pair of each family and no other
    int threads = 1;
    int show = 5;         ///< misses printed of each family
    double limit = 60;    ///< seconds that one pair may take
    bool geos = true;     ///< compare with GEOS
    bool reduce = false;  ///< print misses made small
    std::string wktFile;  ///< check the pairs of this file instead
};

/// Checks the pairs, prints misses as they come and a table at the end; returns how many pairs
/// missed. A crash, or a pair over the limit, is printed and ends the process. SIGINT and SIGTERM
/// end it early, with the table of what was done.
std::uint64_t runCampaign(const CampaignSettings& settings);

/// Checks pairs from a file of well-known text, one operand per line, A then B; empty lines and
/// those that begin with # do not count. Returns how many pairs missed.
std::uint64_t checkFile(const CampaignSettings& settings);

}  // namespace jwtest

#endif  // JW_TESTS_CAMPAIGN_RUN_H
