#pragma once

#include <QMainWindow>
#include <QString>

class QPushButton;

/// The single top-level window. Start-up and the operating system's file-open requests talk to it
/// through the operations below.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);

    /// Opens the file by the end of its name. `flag` says who asks: 0 the command line, 1 a
    /// file-open request of the operating system. False when nothing was opened; what is open then
    /// stays.
    bool openFile(const QString &path, int flag);

    /// Remembers the file and calls loadImportFile() 1 ms after the event loop runs.
    void setImportFile(const QString &path);

    /// The strings of the sister program's call; stored, without further meaning here.
    void setIntegrationString(const QString &text);
    void setSecondIntegrationString(const QString &text);
    /// Where the sister program waits for the height map; shows "Send to Drafteon".
    void setExportPath(const QString &path);

public slots:
    /// Opens the file given to setImportFile().
    void loadImportFile();

private:
    QString m_importFile;
    QString m_integrationString;
    QString m_secondIntegrationString;
    QString m_exportPath;
    QPushButton *m_sendToDrafteon;
};
