#include "Platform/Basics/Failure.h"
#include "Platform/Machine/FileEvents.h"

#include <CoreServices/CoreServices.h>
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <dispatch/dispatch.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace tarvik {

namespace {

/// In seconds. With "no defer" the first event after a pause is told at once.
constexpr CFTimeInterval streamLatency = 0.25;
constexpr FSEventStreamCreateFlags streamFlags =
    kFSEventStreamCreateFlagUseCFTypes | kFSEventStreamCreateFlagNoDefer | kFSEventStreamCreateFlagFileEvents;

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

/// The bytes of the text as they are: the form for the file system would decompose letters, and a volume keeps names as
/// they were written.
std::optional<std::string> bytesOf(CFStringRef text) {
    const CFIndex most = CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8) + 1;
    std::string bytes(static_cast<std::size_t>(most), '\0');
    if (!CFStringGetCString(text, bytes.data(), most, kCFStringEncodingUTF8)) return std::nullopt;
    bytes.resize(bytes.find('\0'));
    return bytes;
}

/// What the stream's callback has for its context. A callback may still run when the stream has ended, so the stream
/// keeps a reference of its own, and the lock tells both apart.
class StreamContext {
public:
    explicit StreamContext(FileEvents::Listener listener) : m_listener(std::move(listener)) {}

    void happened(const std::vector<std::string>& paths) {
        const std::lock_guard guard(m_lock);
        if (!m_hasEnded) ignoringFailure([&] { m_listener.happened(paths); });
    }
    void lost() {
        const std::lock_guard guard(m_lock);
        if (m_hasEnded || std::exchange(m_hasToldOfLoss, true)) return;
        ignoringFailure([&] {
            m_listener.missed(
                "So much happened at once that the system left out some of its reports: what came and went again "
                "meanwhile may be missing.");
        });
    }
    /// Waits for a callback that is running.
    void end() {
        const std::lock_guard guard(m_lock);
        m_hasEnded = true;
    }

    /// CFAllocatorRetainCallBack and CFAllocatorReleaseCallBack.
    static const void* retain(const void* info) {
        ++static_cast<const StreamContext*>(info)->m_references;
        return info;
    }
    static void release(const void* info) {
        const auto* const context = static_cast<const StreamContext*>(info);
        if (--context->m_references == 0) delete context;
    }

private:
    ~StreamContext() = default;

    const FileEvents::Listener m_listener;
    mutable std::atomic<int> m_references = 1;
    std::mutex m_lock;
    bool m_hasEnded = false;
    bool m_hasToldOfLoss = false;
};

struct ReleaseContext {
    void operator()(StreamContext* context) const { StreamContext::release(context); }
};
using OwnedContext = std::unique_ptr<StreamContext, ReleaseContext>;

/// FSEventStreamCallback. What kind of event it was, and its number, do not matter: something happened at the path.
void streamCallback(ConstFSEventStreamRef, void* info, std::size_t count, void* eventPaths,
                    const FSEventStreamEventFlags* flags, const FSEventStreamEventId*) {
    if (!info) return;
    auto* const context = static_cast<StreamContext*>(info);
    const auto list = static_cast<CFArrayRef>(eventPaths);
    const CFIndex length = std::min(static_cast<CFIndex>(count), CFArrayGetCount(list));
    ignoringFailure([&] {
        std::vector<std::string> paths;
        for (CFIndex index = 0; index < length; ++index) {
            const CFTypeRef entry = CFArrayGetValueAtIndex(list, index);
            if (!entry || CFGetTypeID(entry) != CFStringGetTypeID()) continue;
            if (auto path = bytesOf(static_cast<CFStringRef>(entry))) paths.push_back(*std::move(path));
        }
        if (!paths.empty()) context->happened(paths);
    });
    // <FSEvents.h>: of what is below such a path, the system has told only in part.
    constexpr FSEventStreamEventFlags inPart = kFSEventStreamEventFlagMustScanSubDirs |
                                               kFSEventStreamEventFlagUserDropped |
                                               kFSEventStreamEventFlagKernelDropped;
    if (std::any_of(flags, flags + count, [](FSEventStreamEventFlags flag) { return (flag & inPart) != 0; }))
        context->lost();
}

class FSEventsStream final : public FileEvents::Stream {
public:
    FSEventsStream(FSEventStreamRef stream, OwnedContext context)
        : m_stream(stream), m_context(std::move(context)), m_runs(FSEventStreamStart(m_stream)) {}
    ~FSEventsStream() override {
        if (m_runs) FSEventStreamStop(m_stream);  // Which is for those alone that were started.
        FSEventStreamInvalidate(m_stream);
        FSEventStreamRelease(m_stream);
        m_context->end();
    }

    bool runs() const { return m_runs; }

private:
    const FSEventStreamRef m_stream;
    const OwnedContext m_context;
    const bool m_runs;
};

/// Without those that are no text: no file can have such a path.
Owned<CFMutableArrayRef> listOf(const std::vector<fs::path>& roots) {
    Owned<CFMutableArrayRef> list(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    for (const fs::path& root : roots) {
        const Owned<CFStringRef> text(CFStringCreateWithFileSystemRepresentation(kCFAllocatorDefault, root.c_str()));
        if (text) CFArrayAppendValue(list.get(), text.get());
    }
    return list;
}

class MacFileEvents final : public FileEvents {
public:
    std::unique_ptr<Stream> begin(const std::vector<fs::path>& roots, Listener listener) const override {
        const Owned<CFMutableArrayRef> paths = listOf(roots);
        if (CFArrayGetCount(paths.get()) == 0) return nullptr;
        OwnedContext context(new StreamContext(listener));
        FSEventStreamContext streamContext{0, context.get(), StreamContext::retain, StreamContext::release, nullptr};
        const FSEventStreamRef created =
            FSEventStreamCreate(kCFAllocatorDefault, streamCallback, &streamContext, paths.get(),
                                kFSEventStreamEventIdSinceNow, streamLatency, streamFlags);
        if (!created) return refused(listener);
        FSEventStreamSetDispatchQueue(created, dispatch_get_global_queue(QOS_CLASS_UTILITY, 0));
        auto stream = std::make_unique<FSEventsStream>(created, std::move(context));
        if (!stream->runs()) return refused(listener);
        return stream;
    }

private:
    static std::unique_ptr<Stream> refused(const Listener& listener) {
        ignoringFailure([&] {
            listener.missed("Changes could not be watched as they happen: the system gives no events of them.");
        });
        return nullptr;
    }
};

}  // namespace

std::shared_ptr<const FileEvents> makeSystemFileEvents() {
    return std::make_shared<MacFileEvents>();
}

}  // namespace tarvik
