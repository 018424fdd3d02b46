#pragma once

#include <QStyledItemDelegate>

// Draws a type filter item as its label only. The items carry their code
// and pattern list after a run of blanks, which the closed box hides by its
// width; in the open list they would widen it across the screen.
class FilterItemDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static QString visibleLabel(const QString &itemText);

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
