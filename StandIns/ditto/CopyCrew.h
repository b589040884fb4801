#pragma once

#include "ditto/Diagnostics.h"
#include "ditto/Folder.h"
#include "ditto/HardLinks.h"
#include "ditto/ItemCopier.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tarvik::ditto {

/// Some items of one folder, all but folders, to be copied by whoever is free.
class Batch {
public:
    explicit Batch(std::shared_ptr<OpenFolder> folder) : m_folder(std::move(folder)) {}

    void add(unsigned char type, std::string_view name);
    std::size_t size() const { return m_size; }
    OpenFolder& folder() const { return *m_folder; }
    /// Calls `use` with each item and its type.
    template <typename Use>
    void forEach(const Use& use) const {
        for (std::size_t at = 0; at < m_entries.size();) {
            const char* name = m_entries.data() + at + 1;
            use(Item{*m_folder, name, name}, static_cast<unsigned char>(m_entries[at]));
            at += 1 + std::string_view(name).size() + 1;
        }
    }

private:
    std::shared_ptr<OpenFolder> m_folder;
    std::size_t m_size = 0;
    /// One string for all: a byte for the type, the name, a zero byte, and so on.
    std::string m_entries;
};

/// The threads that copy what the walk finds. There are none as long as there is little to do.
///
/// `add`, `finish` and the constructor are called by one thread, the walk's.
class CopyCrew {
public:
    /// Both must outlive it.
    CopyCrew(HardLinks& links, Diagnostics& diagnostics) : m_links(links), m_diagnostics(diagnostics) {}
    /// Stops what still runs.
    ~CopyCrew();
    CopyCrew(const CopyCrew&) = delete;
    CopyCrew& operator=(const CopyCrew&) = delete;

    /// Becomes true at a failure that keeps everyone from going on. An item that cannot be copied is none.
    const std::atomic<bool>& stop() const { return m_stop; }

    /// Hands a batch over. Waits while too many wait already, so that neither memory nor handles pile up.
    /// @throws Stopped when a thread cannot go on; std::system_error when no thread can be started.
    void add(Batch batch);
    /// Keeps the first such failure of all, and has everyone stop.
    void fail(std::exception_ptr failure);
    /// Works along until everything is copied, and ends the threads.
    /// @throws the first failure
    void finish();

private:
    void startThreads();
    void work();
    bool take(Batch& batch);
    void joinThreads();

    HardLinks& m_links;
    Diagnostics& m_diagnostics;
    std::atomic<bool> m_stop = false;
    std::vector<std::thread> m_threads;
    std::size_t m_itemsAdded = 0;

    std::mutex m_mutex;
    std::condition_variable m_hasWork;
    std::condition_variable m_hasSpace;
    std::deque<Batch> m_batches;
    bool m_isComplete = false;
    std::exception_ptr m_failure;
};

}  // namespace tarvik::ditto
