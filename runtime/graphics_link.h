// The few services that the runtime asks of the graphics front end, when there is one.
#ifndef ARRLIB_RUNTIME_GRAPHICS_LINK_H
#define ARRLIB_RUNTIME_GRAPHICS_LINK_H

namespace arrlib {

// A value as the front end hands it over: text or numbers, column by column.
struct GraphicsValue {
    int ndims;
    int const* dims;
    bool is_text;
    double const* elements;
};

// What the front end may ask of the runtime.
struct GraphicsServices {
    int runtime_version;
    // Passes a callback to the program's own dispatcher (runtime/dispatch.h).
    void (*run_callback)(GraphicsValue const& callback);
    void (*report_error)(char const* message);
};
extern GraphicsServices const graphics_services;

struct GraphicsLink {
    void (*show_figures)();
    // Handle of the current figure; negative when there is none.
    int (*current_figure)();
    bool (*button_pressed)();
    void (*shut_down)();
    // Called when the link is installed.
    void (*introduce)(GraphicsServices const& services) = nullptr;
};

// Without figures until the front end installs its own.
GraphicsLink const& graphics();
// Null restores the state without figures.
void install_graphics(GraphicsLink const* link);

} // namespace arrlib

#endif
