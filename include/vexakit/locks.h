#ifndef VEXAKIT_LOCKS_H
#define VEXAKIT_LOCKS_H

#ifdef __cplusplus

/** Obtain policy of a scoped resource that is entered and left, such as a lock. */
template <class Resource>
struct ThreadLockObtain {
    void operator()(Resource resource) const { resource->enter(); }
};

/** Release policy of a scoped resource that is entered and left, such as a lock. */
template <class Resource>
struct ThreadLockRelease {
    void operator()(Resource resource) const { resource->leave(); }
};

namespace Oreval {

/**
 * Holds a resource for the length of a scope: obtains it when made, releases it exactly once,
 * at `Release()` or at the end of the scope, an exception included.
 *
 * @tparam Resource       what is held, by value; a pointer as a rule
 * @tparam ReleasePolicy  default-constructible functor that gives the resource back
 * @tparam ObtainPolicy   default-constructible functor that takes it
 */
template <class Resource, class ReleasePolicy, class ObtainPolicy>
class ScopedResource {
public:
    explicit ScopedResource(Resource resource) : resource_(resource) { ObtainPolicy()(resource_); }

    ScopedResource(const ScopedResource&) = delete;
    ScopedResource& operator=(const ScopedResource&) = delete;

    virtual ~ScopedResource() { Release(); }

    /** Gives the resource back before the scope ends; harmless when repeated. */
    void Release() {
        if (!held_) return;
        held_ = false;
        ReleasePolicy()(resource_);
    }

private:
    bool held_ = true;
    Resource resource_;
};

}  // namespace Oreval

#endif

#endif
