#ifndef QORVEL_WIDGETS_POINT_CLASS_H_
#define QORVEL_WIDGETS_POINT_CLASS_H_

namespace qorvel {

// One point in space as three Doubles: a published class with no control, no host and no logic.
class PointClass {
 public:
  double X() const { return x_; }
  double Y() const { return y_; }
  double Z() const { return z_; }
  // The writes take the client's variable, as the class publishes them, and only read it.
  void SetX(double& XCoord) { x_ = XCoord; }
  void SetY(double& YCoord) { y_ = YCoord; }
  void SetZ(double& ZCoord) { z_ = ZCoord; }

 private:
  double x_ = 0;
  double y_ = 0;
  double z_ = 0;
};

}  // namespace qorvel

#endif  // QORVEL_WIDGETS_POINT_CLASS_H_
