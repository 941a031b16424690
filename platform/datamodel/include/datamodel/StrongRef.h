#pragma once

#include <datamodel/Entity.h>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace Kx {

// The untyped part of a StrongRef: one counted reference on an entity. The data model reads and
// writes references through it (StrongRefMetaType), whatever class they refer to.
class StrongRefBase {
public:
    [[nodiscard]] Entity* entity() const noexcept { return m_entity; }
    // The id of the entity referred to; kNoEntityId for an empty reference.
    [[nodiscard]] EntityId id() const noexcept { return m_entity != nullptr ? m_entity->id() : kNoEntityId; }
    explicit operator bool() const noexcept { return m_entity != nullptr; }
    void reset() noexcept { assign(nullptr); }

protected:
    StrongRefBase() noexcept = default;
    explicit StrongRefBase(Entity* entity) noexcept : m_entity(entity)
    {
        if (m_entity != nullptr)
            m_entity->addRef();
    }
    StrongRefBase(const StrongRefBase& other) noexcept : StrongRefBase(other.m_entity) {}
    StrongRefBase(StrongRefBase&& other) noexcept : m_entity(std::exchange(other.m_entity, nullptr)) {}
    ~StrongRefBase()
    {
        if (m_entity != nullptr)
            m_entity->release();
    }
    StrongRefBase& operator=(const StrongRefBase&) = delete;

    // Takes the new reference before dropping the old one, so assigning a reference to itself, or
    // to the entity that holds the only other reference, never deletes the entity on the way.
    void assign(Entity* entity) noexcept
    {
        if (entity != nullptr)
            entity->addRef();
        Entity* previous = std::exchange(m_entity, entity);
        if (previous != nullptr)
            previous->release();
    }
    void swap(StrongRefBase& other) noexcept { std::swap(m_entity, other.m_entity); }

private:
    friend class StrongRefMetaTypeBase;

    Entity* m_entity = nullptr;
};

// A counted strong reference to an entity of class T (or of a class derived from it). The entity
// lives while a StrongRef, a segment or an undo step holds it. As a member of an entity or value
// it is saved as the id of the entity it refers to (StrongRefMetaType.h).
template <class T>
class StrongRef final : public StrongRefBase {
public:
    StrongRef() noexcept = default;
    StrongRef(std::nullptr_t) noexcept {}
    explicit StrongRef(T* entity) noexcept : StrongRefBase(entity) {}
    StrongRef(const StrongRef& other) noexcept = default;
    StrongRef(StrongRef&& other) noexcept = default;
    template <class U>
        requires(std::is_convertible_v<U*, T*> && !std::is_same_v<U, T>)
    StrongRef(const StrongRef<U>& other) noexcept : StrongRefBase(static_cast<T*>(other.get()))
    {
    }
    ~StrongRef() = default;

    StrongRef& operator=(const StrongRef& other) noexcept
    {
        assign(other.entity());
        return *this;
    }
    StrongRef& operator=(StrongRef&& other) noexcept
    {
        StrongRef moved(std::move(other));
        swap(moved);
        return *this;
    }
    StrongRef& operator=(std::nullptr_t) noexcept
    {
        reset();
        return *this;
    }

    [[nodiscard]] T* get() const noexcept
    {
        // Here rather than on the class: an entity may hold a StrongRef to its own, incomplete, class.
        static_assert(std::is_base_of_v<Entity, T>, "a StrongRef refers to entities");
        return static_cast<T*>(entity());
    }
    T* operator->() const noexcept { return get(); }
    T& operator*() const noexcept { return *get(); }

    // The entity as a T when it is one; empty otherwise.
    [[nodiscard]] static StrongRef cast(Entity* entity) { return StrongRef(dynamic_cast<T*>(entity)); }

    friend bool operator==(const StrongRef& first, const StrongRef& second) noexcept { return first.get() == second.get(); }
    friend bool operator==(const StrongRef& reference, std::nullptr_t) noexcept { return !reference; }
    friend bool operator==(const StrongRef& reference, const T* pointer) noexcept { return reference.get() == pointer; }
};

// What a `make` function answers: a new entity together with its first reference, until it is
// handed to a StrongRef (or dropped, which deletes the entity unless a segment took it).
template <class T>
class StrongRefCreator {
public:
    template <class... Args>
    [[nodiscard]] static StrongRefCreator create(Args&&... args)
    {
        return StrongRefCreator(new T(std::forward<Args>(args)...));
    }
    explicit StrongRefCreator(T* created) noexcept : m_reference(created) {}

    [[nodiscard]] T* get() const noexcept { return m_reference.get(); }
    T* operator->() const noexcept { return get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(m_reference); }

    operator StrongRef<T>() const& noexcept { return m_reference; }
    operator StrongRef<T>() && noexcept { return std::move(m_reference); }
    template <class U>
        requires(std::is_convertible_v<T*, U*> && !std::is_same_v<U, T>)
    operator StrongRef<U>() const noexcept
    {
        return StrongRef<U>(m_reference);
    }

private:
    StrongRef<T> m_reference;
};

template <class F>
inline constexpr bool isStrongRef = false;
template <class T>
inline constexpr bool isStrongRef<StrongRef<T>> = true;

} // namespace Kx
