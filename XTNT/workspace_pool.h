// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace XTNT {

// Work space for the chunks of a parallel pass: a chunk borrows one and gives it back, so there are never more than
// threads, and what a work space has learned (a cache) serves the chunks after. Which chunk gets which must not show in
// a result.
template <class Workspace>
class WorkspacePool
{
public:
    using Maker = std::function<std::unique_ptr<Workspace>()>;

    explicit WorkspacePool(Maker make) : m_make(std::move(make)) {}

    // A borrowed work space; goes back at the end of the scope.
    class Lease
    {
    public:
        explicit Lease(WorkspacePool& pool) : m_pool(pool), m_workspace(pool.take()) {}
        ~Lease() { m_pool.giveBack(std::move(m_workspace)); }
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        Workspace& operator*() const { return *m_workspace; }

    private:
        WorkspacePool& m_pool;
        std::unique_ptr<Workspace> m_workspace;
    };

private:
    std::unique_ptr<Workspace> take()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (!m_idle.empty()) {
                std::unique_ptr<Workspace> workspace = std::move(m_idle.back());
                m_idle.pop_back();
                return workspace;
            }
            // Room for its return, which must not fail.
            m_idle.reserve(++m_made);
        }
        return m_make();
    }

    void giveBack(std::unique_ptr<Workspace> workspace)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_idle.push_back(std::move(workspace));
    }

    Maker m_make;
    std::mutex m_mutex;
    std::size_t m_made = 0;
    std::vector<std::unique_ptr<Workspace>> m_idle;
};

} // namespace XTNT
