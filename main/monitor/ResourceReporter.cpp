#include "qilsys/ResourceReporter.h"

#include "monitor/ResourceReporterManager.h"

ResourceReporter::ResourceReporter() { ResourceReporterManager::Get().Add(this); }

ResourceReporter::ResourceReporter(const ResourceReporter&) {}

ResourceReporter& ResourceReporter::operator=(const ResourceReporter&) { return *this; }

ResourceReporter::~ResourceReporter() noexcept(false) { ResourceReporterManager::Get().Remove(this); }
