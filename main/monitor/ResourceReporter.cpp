#include "qilsys/ResourceReporter.h"

#include <utility>

#include "monitor/ResourceReporterManager.h"

ResourceReporter::ResourceReporter() { ResourceReporterManager::Get().Add(this); }

ResourceReporter::ResourceReporter(const ResourceReporter&) {}

ResourceReporter& ResourceReporter::operator=(const ResourceReporter&) { return *this; }

ResourceReporter::~ResourceReporter() noexcept(false) { ResourceReporterManager::Get().Remove(this); }

namespace qilsys {

namespace {

class Reporter : public ResourceReporter {
 public:
  explicit Reporter(std::function<void(unsigned int)> report) : m_report(std::move(report)) {}

  // From a copy: the function may destroy the reporter that it is called by.
  void Report(unsigned int seconds) override {
    const std::function<void(unsigned int)> report = m_report;
    if (report) report(seconds);
  }

 private:
  const std::function<void(unsigned int)> m_report;
};

}  // namespace

FunctionReporter::FunctionReporter(std::function<void(unsigned int)> report) {
  const auto noReports = ResourceReporterManager::Get().HoldReports();
  m_reporter = std::make_unique<Reporter>(std::move(report));
}

FunctionReporter::~FunctionReporter() {
  const auto noReports = ResourceReporterManager::Get().HoldReports();
  m_reporter.reset();
}

}  // namespace qilsys
