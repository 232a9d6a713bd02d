// The few services that the runtime asks of the graphics front end, when there is one.
#ifndef ARRLIB_RUNTIME_GRAPHICS_LINK_H
#define ARRLIB_RUNTIME_GRAPHICS_LINK_H

namespace arrlib {

struct GraphicsLink {
    void (*show_figures)();
    // Handle of the current figure; negative when there is none.
    int (*current_figure)();
    bool (*button_pressed)();
    void (*shut_down)();
};

// Without figures until the front end installs its own.
GraphicsLink const& graphics();
// Null restores the state without figures.
void install_graphics(GraphicsLink const* link);

} // namespace arrlib

#endif
