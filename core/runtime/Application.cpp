#include "core/runtime/Application.h"

#include <cstdlib>

#include "core/crc/crc32.h"
#include "sys/platform/Process.h"
#include "sys/process.h"
#include "sys/scheduler.h"

namespace core {

namespace {

int const delayBeforeClearing = 10'000;  ///< ms that a delayed request keeps the process-ID record

std::atomic<Application*> instance = nullptr;

}  // namespace

Application::Application(String const& name)
    : mainThreadId_(sys::platform::currentThreadId()), name_(name), status_(name) {
    Application* none = nullptr;
    if (!instance.compare_exchange_strong(none, this)) {
        std::_Exit(EXIT_FAILURE);
    }
    sys::platform::prepareProcess();
    crc::init();
    timerInit();
    status_._setStatus(AppStatus::constructed);
}

Application::~Application() {
    status_._setStatus(AppStatus::ended);
    timerDone();
    version::free();
    FulfillTerminationRequest();
}

char const* Application::ClassName() const {
    return "Application";
}

int Application::_addRef() {
    return 0;
}

int Application::_release() {
    return 0;
}

Application* Application::Instance() {
    return instance;
}

String Application::AppName() {
    Application const* const application = instance;
    return application != nullptr ? application->name_ : String("GApplication == nil");
}

unsigned Application::MainThreadID() {
    Application const* const application = instance;
    return application != nullptr ? application->mainThreadId_ : 0;
}

unsigned Application::ProcessID() {
    Application const* const application = instance;
    return application != nullptr ? application->processId_ : 0;
}

unsigned Application::SessionID() {
    Application const* const application = instance;
    return application != nullptr ? application->sessionId_ : 0;
}

bool Application::IsADaemon() {
    Application const* const application = instance;
    return application != nullptr && application->HasFlag(daemonFlag);
}

bool Application::IsUsingSysLog() {
    Application const* const application = instance;
    return application != nullptr && application->HasFlag(sysLogFlag);
}

bool Application::IsTerminated() {
    Application const* const application = instance;
    return application != nullptr && application->HasFlag(fulfilledFlag);
}

bool Application::Daemonize(String const&) {
    return false;
}

unsigned Application::FulfillTerminationRequest() {
    unsigned const before = flags_;
    if (HasFlag(daemonFlag) && !HasFlag(fulfilledFlag)) {
        flags_ |= fulfilledFlag;
        if (terminationRequest_ == delayedRequest) {
            sys::scheduler::sleepms(delayBeforeClearing);
        }
        sys::pid::clear(name_);
    }
    return before;
}

void Application::setVersionNumber(unsigned major, unsigned minor) {
    version::record().Init(name_, major, minor, version::CEDevStage::unchanged);
}

void Application::setVersionNumber(String const& text) {
    setVersionNumber(0, 0);
    version::record().SetNumberText(text);
}

void Application::setVersionModelName(String const& name) {
    version::record().SetModelName(name);
}

void Application::setDevStage(version::CEDevStage stage) {
    version::record().SetDevStage(stage);
}

void Application::setDescription(String const& description) {
    version::record().SetDescription(description);
}

void Application::setBuildVersion(String const& build) {
    version::record().SetBuild(build);
}

void Application::clearBuildVersion() {
    version::record().SetBuild(String());
}

String Application::getVersionNumber() const {
    return version::record().GetNumber();
}

String Application::getVersionBuild() const {
    return version::record().GetNumberAndBuild();
}

String Application::getVersionShort() const {
    return version::record().GetShort();
}

String Application::getVersionLong(bool withDescription) const {
    return version::record().GetLong(withDescription);
}

String Application::getDescription() const {
    return version::record().GetDescription();
}

String Application::getBuildVersion() const {
    return version::record().GetBuild();
}

int Application::Result() {
    return 0;
}

void Application::RequestTermination(TerminationRequest request) {
    Application* const application = instance;
    TerminationRequest none = noRequest;
    if (application == nullptr || request == noRequest ||
        !application->terminationRequest_.compare_exchange_strong(none, request)) {
        return;
    }
    application->terminationEvent_.Signal();
    application->wakeEvent_.Signal();
}

Application::TerminationRequest Application::TerminationRequested() {
    Application const* const application = instance;
    return application != nullptr ? application->terminationRequest_.load() : noRequest;
}

bool Application::IsTerminationRequested() {
    return TerminationRequested() != noRequest;
}

int Application::Sleep(int ms, bool interruptible) {
    Application* const application = instance;
    bool ended = false;
    if (interruptible && application != nullptr) {
        ended = application->terminationEvent_.Wait(ms) != Event::timedOut;
    } else {
        sys::scheduler::sleepms(ms);
    }
    if (IsTerminationRequested()) {
        return 1;
    }
    return ended ? 2 : 0;
}

void Application::WakeLoop() {
    if (Application* const application = instance; application != nullptr) {
        application->wakeEvent_.Signal();
    }
}

ClassRef<ExecutionLink> Application::Dispatch(ClassRef<ExecutionBit> const& bit,
                                              ExecutionQueueAbstract::ExecutionPriority priority) {
    return mainQueue_.Dispatch(bit, priority);
}

char const* Application::MainExecutionQueue::ClassName() const {
    return "MainExecutionQueue";
}

void Application::MainExecutionQueue::ScheduleItem(ClassRef<ExecutionLink> const& item,
                                                   unsigned long long now) {
    try {
        if (!item->IsCancelled() && item->Bit()->Execute(now) && !item->IsCancelled()) {
            Requeue(item);
            return;
        }
    } catch (...) {
        // A failing bit, or no memory to queue it again, must not end the main loop.
    }
    item->SetDone();
}

void Application::MainExecutionQueue::Dispatched() {
    WakeLoop();
}

bool Application::InitOnce() {
    return true;
}

bool Application::Init() {
    return true;
}

void Application::Idle1s() {}

void Application::Idle5s() {}

void Application::Idle10s() {}

void Application::Idle30s() {}

void Application::Idle60s() {}

void Application::Done() {}

}  // namespace core
