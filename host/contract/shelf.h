// shelf.h - owner of objects that are handed to an extension as plain pointers. The extension ends them by their own
// Release; what it forgets is freed with the shelf.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

namespace QVHost {

template <class Object>
class Shelf {
public:
    Object* Keep(std::shared_ptr<Object> object) {
        const std::lock_guard lock(m_mutex);
        Object* const raw = object.get();
        m_objects.emplace(raw, std::move(object));
        return raw;
    }

    /// The object of a pointer that an extension gives; null for one that is not, or no more, on the shelf.
    std::shared_ptr<Object> Find(const void* object) {
        const std::lock_guard lock(m_mutex);
        const auto entry = m_objects.find(object);
        return entry == m_objects.end() ? nullptr : entry->second;
    }

    void Remove(const void* object) {
        std::shared_ptr<Object> last;  // destroyed after the lock is released: it may have objects of its own to end
        const std::lock_guard lock(m_mutex);
        const auto entry = m_objects.find(object);
        if (entry == m_objects.end()) return;
        last = std::move(entry->second);
        m_objects.erase(entry);
    }

    /// Ends all objects.
    void Clear() {
        std::unordered_map<const void*, std::shared_ptr<Object>> last;
        const std::lock_guard lock(m_mutex);
        last.swap(m_objects);
    }

private:
    std::mutex m_mutex;
    std::unordered_map<const void*, std::shared_ptr<Object>> m_objects;
};

}  // namespace QVHost
