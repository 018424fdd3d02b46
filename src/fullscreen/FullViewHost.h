#pragma once

// What the full-screen view asks of the window that opens it; the file, the
// list and how they show come from the viewer context.
class FullViewHost {
public:
    virtual ~FullViewHost() = default;

    virtual void chooseZoom(int percent) = 0;
    virtual void fitToWindow() = 0;
    virtual void showActualSize() = 0;
    virtual void playMovie() = 0;
    virtual void stopMovie() = 0;
    virtual void toggleAnimation() = 0;
    virtual int moviePlayState() const = 0; // of the player that shows movies full screen
    virtual bool animatesShownFile() const = 0; // the file on show plays as an animation
    virtual bool shellOpenOffered() const = 0;
    // The slideshow waits while the view works; it goes on if it is on.
    virtual void holdSlideshow() = 0;
    virtual void resumeSlideshow() = 0;
    // The view closed: the main windows come back with the keyboard.
    virtual void fullViewClosed() = 0;
};
