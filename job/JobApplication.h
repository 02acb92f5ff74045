#pragma once

#include <vector>

#include "core/text/String.h"
#include "job/JobRun.h"
#include "program/Program.h"

namespace job {

/// The program ravelink-job: reads its command line and runs the job.
class JobApplication : public program::Program {
public:
    JobApplication();

    /// Runs the program; see Result.
    void Main(int argc, char const* const* argv);
    /// Returns the exit status.
    int Result() override { return exitStatus_; }

protected:
    update::SessionTimeouts timeouts;

private:
    std::vector<Error> ReadOptions(int argc, char const* const* argv, JobOptions& options);
    void ReadNumber(char const* option, int smallest, int largest, int& value,
                    std::vector<Error>& errors) const;
    void RunJob(JobOptions const& options);

    int exitStatus_ = 0;
};

}  // namespace job
