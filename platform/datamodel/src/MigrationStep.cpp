#include "datamodel/MigrationStep.h"

#include "datamodel/Document.h"
#include "datamodel/EntityMetaType.h"
#include "datamodel/MigrationLog.h"
#include "datamodel/Segment.h"
#include "internal/MemberVisitor.h"

#include <base/Assert.h>

#include <algorithm>
#include <mutex>
#include <tuple>

namespace Kx {

namespace {

struct RegisteredStep {
    std::string name;
    int rank;
    MigrationSteps::Factory factory;
};

struct StepRegistry {
    std::mutex mutex;
    std::vector<RegisteredStep> steps;
};

StepRegistry& registry()
{
    // Never destroyed: steps of other libraries leave from their own static destructors.
    static auto* instance = new StepRegistry();
    return *instance;
}

} // namespace

void MigrationStep::run(Document& document, const MigrationLog& log, bool copiedAsset)
{
    m_document = &document;
    m_log = &log;
    m_copiedAsset = copiedAsset;
    onMigrate();
}

bool MigrationStep::wasMigrated(const std::string& metaTypeId) const
{
    return m_log != nullptr && m_log->migrated(metaTypeId);
}

void MigrationStep::forEachValue(const ValueMetaType& metaType, const std::function<void(void*, Entity&)>& visit) const
{
    if (m_document == nullptr)
        return;
    for (const auto& segment : m_document->segments()) {
        if (segment->isTransient())
            continue;
        for (const auto& entry : segment->entities()) {
            Entity& entity = *entry.second;
            MemberVisitor::visitValues(&entity, entity.entityMetaType().memberSet(),
                [&](const ValueMetaType& type, void* value) {
                    if (&type == &metaType)
                        visit(value, entity);
                });
        }
    }
}

bool MigrationSteps::add(std::string name, int rank, Factory factory)
{
    StepRegistry& steps = registry();
    std::lock_guard lock(steps.mutex);
    const bool free = std::none_of(steps.steps.begin(), steps.steps.end(),
        [&](const RegisteredStep& step) { return step.name == name; });
    KX_ASSERT(free);
    if (!free)
        return false;
    steps.steps.push_back(RegisteredStep{std::move(name), rank, std::move(factory)});
    std::sort(steps.steps.begin(), steps.steps.end(), [](const RegisteredStep& a, const RegisteredStep& b) {
        return std::tie(a.rank, a.name) < std::tie(b.rank, b.name);
    });
    return true;
}

void MigrationSteps::remove(const std::string& name)
{
    StepRegistry& steps = registry();
    std::lock_guard lock(steps.mutex);
    std::erase_if(steps.steps, [&](const RegisteredStep& step) { return step.name == name; });
}

std::vector<std::string> MigrationSteps::names()
{
    StepRegistry& steps = registry();
    std::lock_guard lock(steps.mutex);
    std::vector<std::string> names;
    for (const RegisteredStep& step : steps.steps)
        names.push_back(step.name);
    return names;
}

void MigrationSteps::runAll(Document& document, const MigrationLog& log, bool copiedAsset)
{
    std::vector<Factory> factories;
    {
        StepRegistry& steps = registry();
        std::lock_guard lock(steps.mutex);
        for (const RegisteredStep& step : steps.steps)
            factories.push_back(step.factory);
    }
    // Run outside the lock: a step may register or look up others.
    for (const Factory& factory : factories) {
        if (std::unique_ptr<MigrationStep> step = factory())
            step->run(document, log, copiedAsset);
    }
}

} // namespace Kx
