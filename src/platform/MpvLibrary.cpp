// libmpv and the ~190 libraries it pulls in are loaded on the first movie,
// not at start-up: linking them cost a third of the time to the first
// picture and tens of megabytes that a user who only looks at pictures never
// needs. These definitions stand in for libmpv's own and forward to it.

#include <mpv/client.h>
#include <mpv/render.h>

#include <QLibrary>

namespace {

struct Mpv {
    decltype(&::mpv_create) create = nullptr;
    decltype(&::mpv_initialize) initialize = nullptr;
    decltype(&::mpv_terminate_destroy) terminateDestroy = nullptr;
    decltype(&::mpv_set_option_string) setOptionString = nullptr;
    decltype(&::mpv_command_async) commandAsync = nullptr;
    decltype(&::mpv_set_property_async) setPropertyAsync = nullptr;
    decltype(&::mpv_get_property_async) getPropertyAsync = nullptr;
    decltype(&::mpv_observe_property) observeProperty = nullptr;
    decltype(&::mpv_wait_event) waitEvent = nullptr;
    decltype(&::mpv_set_wakeup_callback) setWakeupCallback = nullptr;
    decltype(&::mpv_render_context_create) renderCreate = nullptr;
    decltype(&::mpv_render_context_set_update_callback) renderSetUpdateCallback = nullptr;
    decltype(&::mpv_render_context_update) renderUpdate = nullptr;
    decltype(&::mpv_render_context_render) renderRender = nullptr;
    decltype(&::mpv_render_context_free) renderFree = nullptr;
    bool complete = false;
};

template <typename Function>
bool resolve(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

// Loaded once and never unloaded: players may outlive any one owner.
const Mpv &mpv()
{
    static const Mpv loaded = [] {
        Mpv m;
        QLibrary library(QStringLiteral("mpv"), 2);
        if (!library.load())
            return m;
        m.complete = resolve(library, "mpv_create", m.create)
            && resolve(library, "mpv_initialize", m.initialize)
            && resolve(library, "mpv_terminate_destroy", m.terminateDestroy)
            && resolve(library, "mpv_set_option_string", m.setOptionString)
            && resolve(library, "mpv_command_async", m.commandAsync)
            && resolve(library, "mpv_set_property_async", m.setPropertyAsync)
            && resolve(library, "mpv_get_property_async", m.getPropertyAsync)
            && resolve(library, "mpv_observe_property", m.observeProperty)
            && resolve(library, "mpv_wait_event", m.waitEvent)
            && resolve(library, "mpv_set_wakeup_callback", m.setWakeupCallback)
            && resolve(library, "mpv_render_context_create", m.renderCreate)
            && resolve(library, "mpv_render_context_set_update_callback", m.renderSetUpdateCallback)
            && resolve(library, "mpv_render_context_update", m.renderUpdate)
            && resolve(library, "mpv_render_context_render", m.renderRender)
            && resolve(library, "mpv_render_context_free", m.renderFree);
        return m;
    }();
    return loaded;
}

} // namespace

// Without the library no handle is ever made, so the other calls are never reached.
mpv_handle *mpv_create(void)
{
    return mpv().complete ? mpv().create() : nullptr;
}

int mpv_initialize(mpv_handle *ctx)
{
    return mpv().initialize(ctx);
}

void mpv_terminate_destroy(mpv_handle *ctx)
{
    mpv().terminateDestroy(ctx);
}

int mpv_set_option_string(mpv_handle *ctx, const char *name, const char *data)
{
    return mpv().setOptionString(ctx, name, data);
}

int mpv_command_async(mpv_handle *ctx, uint64_t reply_userdata, const char **args)
{
    return mpv().commandAsync(ctx, reply_userdata, args);
}

int mpv_set_property_async(mpv_handle *ctx, uint64_t reply_userdata, const char *name,
                           mpv_format format, void *data)
{
    return mpv().setPropertyAsync(ctx, reply_userdata, name, format, data);
}

int mpv_get_property_async(mpv_handle *ctx, uint64_t reply_userdata, const char *name, mpv_format format)
{
    return mpv().getPropertyAsync(ctx, reply_userdata, name, format);
}

int mpv_observe_property(mpv_handle *ctx, uint64_t reply_userdata, const char *name, mpv_format format)
{
    return mpv().observeProperty(ctx, reply_userdata, name, format);
}

mpv_event *mpv_wait_event(mpv_handle *ctx, double timeout)
{
    return mpv().waitEvent(ctx, timeout);
}

void mpv_set_wakeup_callback(mpv_handle *ctx, void (*cb)(void *d), void *d)
{
    mpv().setWakeupCallback(ctx, cb, d);
}

int mpv_render_context_create(mpv_render_context **res, mpv_handle *ctx, mpv_render_param *params)
{
    return mpv().renderCreate(res, ctx, params);
}

void mpv_render_context_set_update_callback(mpv_render_context *ctx, mpv_render_update_fn callback,
                                            void *callback_ctx)
{
    mpv().renderSetUpdateCallback(ctx, callback, callback_ctx);
}

uint64_t mpv_render_context_update(mpv_render_context *ctx)
{
    return mpv().renderUpdate(ctx);
}

int mpv_render_context_render(mpv_render_context *ctx, mpv_render_param *params)
{
    return mpv().renderRender(ctx, params);
}

void mpv_render_context_free(mpv_render_context *ctx)
{
    mpv().renderFree(ctx);
}
