#pragma once

#include <QDialog>

namespace marlowen {

/// Name, version and what the program is built with.
class AboutBox : public QDialog
{
    Q_OBJECT

public:
    explicit AboutBox(QWidget *parent = nullptr);
};

} // namespace marlowen
