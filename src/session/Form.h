#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QMdiArea;
class QMdiSubWindow;

// The lifecycle that all screens share: one process-wide instance per screen, created on
// first use. Its window and controls are built when it loads and destroyed when it unloads,
// while the instance's own values (such as EditMode and CurrentRowID) live on. Instances live
// until the process ends (they are never destroyed, so no window outlives the application).
class Form : public QObject {
    Q_OBJECT
  public:
    ~Form() override;

    // The loaded window, or nullptr while unloaded.
    QWidget* window() const { return m_window; }
    bool isLoaded() const { return m_window != nullptr; }

    // Loads the screen if needed (builds its controls and runs Form_Load), shows it and
    // brings it to the front. A child screen shows inside the main window.
    void Show();
    // Loads the screen if needed as a window owned by `owner` and shows it modally: returns
    // when it is closed.
    void ShowModal(QWidget* owner);
    // Destroys the window; nothing is asked.
    void Unload();

    // A control of the loaded window by its object name.
    template <class T> T* control(const QString& name) const {
        return m_window ? m_window->findChild<T*>(name) : nullptr;
    }

    // The main window's area in which child screens show; set by the main window.
    static void setMdiArea(QMdiArea* area);
    static QMdiArea* mdiArea();

  protected:
    explicit Form(bool mdiChild);
    // Creates the window with its controls as designed; called at each load.
    virtual QWidget* build() = 0;
    // Runs once after build, at each load.
    virtual void Form_Load() {}
    // The first steps of a child screen's Form_Load: the main window's icon, the button-face
    // background, centred in the main window.
    void prepareWindow();

  private:
    bool m_mdiChild;
    QPointer<QWidget> m_window;
    QPointer<QMdiSubWindow> m_subWindow;
};
