#pragma once

namespace update {

/// The time limits of a session, in milliseconds, with the product's values.
struct SessionLimits {
    static constexpr int completionMinutes = 5;

    int requestAnswer = 10'000;  ///< for the answer to the request
    int headerAnswer = 2'000;    ///< for an answer to the header, which need not come
    int transferStall = 60'000;  ///< since the last byte that the device took
    int completion = completionMinutes * 60'000;  ///< from the trailer to the end, in all
    int notification = 10'000;                    ///< for each notification after the trailer
};

}  // namespace update
