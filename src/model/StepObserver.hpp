// Looks on while the objects of a model step.
#pragma once

class StepObserver {
 public:
  virtual ~StepObserver() = default;
  // In this order, once per step.
  virtual void sources_come_next() = 0;
  virtual void balance_comes_next() = 0;
};
