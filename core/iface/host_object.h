// The object that the host returns for its function selector 2. The module calls only the last
// operation; the nineteen before it fix its index in the table.
#pragma once

class IHostObject {
 public:
  virtual void* hostOperation01() = 0;
  virtual void* hostOperation02() = 0;
  virtual void* hostOperation03() = 0;
  virtual void* hostOperation04() = 0;
  virtual void* hostOperation05() = 0;
  virtual void* hostOperation06() = 0;
  virtual void* hostOperation07() = 0;
  virtual void* hostOperation08() = 0;
  virtual void* hostOperation09() = 0;
  virtual void* hostOperation10() = 0;
  virtual void* hostOperation11() = 0;
  virtual void* hostOperation12() = 0;
  virtual void* hostOperation13() = 0;
  virtual void* hostOperation14() = 0;
  virtual void* hostOperation15() = 0;
  virtual void* hostOperation16() = 0;
  virtual void* hostOperation17() = 0;
  virtual void* hostOperation18() = 0;
  virtual void* hostOperation19() = 0;

  // Returns the handle of the host's main window (an HWND), or null if there is none.
  virtual void* mainWindow() = 0;

 protected:
  ~IHostObject() = default;
};
