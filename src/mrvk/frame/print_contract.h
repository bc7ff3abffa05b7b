// The print engine a class reaches through IHostContext::PrintEngine: the texts the host
// supplies for a print job. The job itself (PrintJob) and the print data writer (PrintData)
// are helper objects a class creates itself (kvhost/lib/print_job.h, print_data.h).
#pragma once

#include <string>

namespace mrvk {

class IHostPrintEngine {
 public:
  virtual ~IHostPrintEngine() = default;
  // The name at the head of printed reports.
  virtual std::string OrganisationName() const = 0;
  // A second text of the host's for the job; the module only passes it on (the job prints
  // it in the footer).
  virtual std::string JobText2() const = 0;
};

}  // namespace mrvk
