// The window in which forms show as children.
#pragma once

class QMdiSubWindow;

namespace controls {

class Form;

class FormHost
{
public:
    /// Wraps a form into a frame of the area.
    virtual QMdiSubWindow* adopt(Form* form) = 0;
    /// Makes a frame the active one.
    virtual void bringForward(QMdiSubWindow* frame) = 0;
    /// Forgets the frame of a form that goes.
    virtual void release(QMdiSubWindow* frame) = 0;

    /// The process's host; null before it is made and after it has gone.
    [[nodiscard]] static FormHost* instance() { return current(); }

protected:
    FormHost() { current() = this; }
    ~FormHost()
    {
        if (current() == this)
            current() = nullptr;
    }
    FormHost(const FormHost&) = delete;
    FormHost& operator=(const FormHost&) = delete;

private:
    static FormHost*& current()
    {
        static FormHost* host = nullptr;
        return host;
    }
};

} // namespace controls
