#ifndef HOSTSCENE_H
#define HOSTSCENE_H

#include <topology/devicescene.h>

// The library's scene as the host wants it: a link between two units that
// are already linked, in either direction, is refused, since two links
// would be drawn on top of each other and one of them could never be picked.
class HostScene : public DeviceScene
{
    Q_OBJECT
public:
    explicit HostScene(QObject *parent = nullptr);

    // True when a link runs between the two units, either way.
    bool isLinked(unsigned short a, unsigned short b);
    // addArrowLink() unless the units are already linked; false if refused.
    bool addLink(unsigned short from, unsigned short to);

signals:
    // A link drawn with the mouse was taken away again.
    void linkRefused(unsigned short from, unsigned short to);

protected:
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;

private:
    void removeNewestLink(unsigned short from, unsigned short to);
};

#endif // HOSTSCENE_H
