#pragma once

#include <QString>
#include <QWidget>

namespace tessarine {

/// A part of the panel that is read and never used: screen readers find it as text beside the field
/// and the list. Main thread only.
class SpokenPart : public QWidget {
    Q_OBJECT

public:
    explicit SpokenPart(QWidget* parent);

protected:
    /// What a reader says for the part, and tells by itself when it has changed.
    void say(const QString& text);
};

} // namespace tessarine
